// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/recording/RecordingGPSOutput.h>
#include <Pelluvia/system/MainThread.h>

#include <tests/support/RecorderText.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace pelluvia::testing {

/// Makes calls of bytes, any bytes: each chooses a call of a receiver, in any order, or something
/// else that a host can do, and what comes with it. A recorder and its model get the same calls and
/// must then hold the same.
class RecorderCalls {
  public:
    explicit RecorderCalls(std::string_view bytes) : rest_(bytes) {
        mainThread::drain();
        recorder_->setErrorObject(observer_, &Observer::reported);
        recorder_->setCompletionObject(observer_, &Observer::completed);
        recorder_->setProgress(observer_);
    }
    RecorderCalls(const RecorderCalls &) = delete;
    RecorderCalls &operator=(const RecorderCalls &) = delete;
    ~RecorderCalls() { recorder_->setCompletionObject(nullptr); }

    /// What differs between the recorder and the model after all calls; empty when nothing does.
    [[nodiscard]] std::string run() {
        std::string found;
        while (!rest_.empty() && found.empty()) {
            found = call(byte() % 32);
        }
        return found.empty() ? compare() : found;
    }

    [[nodiscard]] const RecorderModel &model() const noexcept { return model_; }

  private:
    /// Whom the recorder tells.
    class Observer : public GPXExporterProgress {
      public:
        void reported(Report report) { // NOLINT(performance-unnecessary-value-param)
            reports.push_back(textOf(report));
        }
        void completed(std::shared_ptr<RecordingGPSOutput> /*recorder*/) { ++completions; }
        void gpxStartTransfer(int kind, int count) override {
            progress.push_back(RecorderModel::line("start", kind, count));
        }
        void gpxProgress(int kind, int index) override {
            progress.push_back(RecorderModel::line("progress", kind, index));
        }
        void gpxEndTransfer(int kind) override {
            progress.push_back("end " + std::to_string(kind));
        }

        Lines reports;
        Lines progress;
        int completions = 0;
    };

    std::uint8_t byte() {
        if (rest_.empty()) {
            return 0;
        }
        const auto first = static_cast<std::uint8_t>(rest_.front());
        rest_.remove_prefix(1);
        return first;
    }
    template <class Plain>
    Plain raw() {
        Plain value{};
        const std::size_t size = std::min(rest_.size(), sizeof value);
        std::memcpy(&value, rest_.data(), size);
        rest_.remove_prefix(size);
        return value;
    }

    /// Where something begins, ends, or is not a number; or near the last one.
    double coordinate(double before) {
        static constexpr std::array<double, 16> values = {0.0,  -0.0,   1e-60,   47.25, 8.5, 91.0,
                                                          91.5, -180.0, 1e30,    1.0,   2.0, 3.0,
                                                          1e-4, 3.5e38, -3.5e38, 1e-45};
        const std::uint8_t how = byte();
        const auto step = static_cast<std::int8_t>(how) / 8;
        switch (how % 8) {
        case 0:
        case 1:
            return before;
        case 2:
            return before + step * 0.00005;
        case 3:
            return before + step * 0.0001;
        case 4:
        case 5:
            return before + step;
        case 6:
            return values[how / 8 % values.size()];
        default:
            return raw<double>(); // any bits at all
        }
    }
    GPSPoint point() {
        last_.latitude = coordinate(last_.latitude);
        last_.longitude = coordinate(last_.longitude);
        last_.altitude += 1.0;
        last_.time += byte();
        return last_;
    }

    Value value() {
        switch (byte() % 8) {
        case 0:
            return Value(std::int64_t{byte()});
        case 1:
            return Value(raw<std::int64_t>());
        case 2:
            return Value(raw<float>());
        case 3:
            return Value(raw<double>());
        case 4:
            return Value(std::string_view("text"));
        case 5:
            return Value::wrapping(last_);
        case 6: {
            auto array = Ref<Array>::make();
            array->append(Value(1));
            return Value(array);
        }
        default: {
            auto dictionary = Ref<Dictionary>::make();
            dictionary->set(Key("inner"), Value(2));
            return Value(dictionary);
        }
        }
    }
    /// Extras for one call: none, new ones, or those of the newest point.
    const Dictionary *extra() {
        static constexpr std::array<const char *, 8> names = {
            "hr", "name", "point", "points", "temp", "speed", "count", "a key of nobody"};
        const std::uint8_t how = byte();
        if (how % 4 == 0) {
            return nullptr;
        }
        if (how % 4 == 1) {
            return recorder_->lastTrackPoint();
        }
        extra_.removeAll();
        for (int i = 0; i < how / 4 % 4; ++i) {
            const char *name = names.at(byte() % names.size());
            extra_.set(Key(name), value());
        }
        return &extra_;
    }
    /// The attributes of a track or a route, perhaps those of the open one.
    const Dictionary *attributes(Dictionary *open) { return byte() % 4 == 0 ? open : extra(); }

    /// How a transfer is announced, with the count that a recorder must read.
    std::pair<const Dictionary *, std::int32_t> announcement() {
        if (byte() % 4 == 0) {
            return {nullptr, 0};
        }
        const auto count = raw<std::int32_t>();
        extra_.removeAll();
        extra_.set(extras::count, Value(count));
        return {&extra_, count};
    }
    int kind() { return byte() % 5; }
    Report report() {
        switch (byte() % 3) {
        case 0:
            return {};
        case 1:
            return std::string("a report");
        default:
            return Error::make("a domain", byte(), {});
        }
    }

    std::string call(int number) {
        switch (number) {
        case 0:
            recorder_->newTrackSegment();
            break;
        case 1: {
            const Dictionary *given = attributes(recorder_->currentTrack());
            model_.newTrack(given);
            recorder_->newTrack(given);
            break;
        }
        case 2: {
            const Dictionary *given = attributes(recorder_->currentRoute());
            model_.newRoute(given);
            recorder_->newRoute(given);
            break;
        }
        case 3:
            addPoint(&RecorderModel::wayPoint, &RecordingGPSOutput::wayPoint);
            break;
        case 4:
            addPoint(&RecorderModel::routePoint, &RecordingGPSOutput::routePoint);
            break;
        case 5: {
            const GPSPoint given = point();
            recorder_->poiPoint(given, extra());
            break;
        }
        case 6: {
            const GPSPoint given = point();
            recorder_->lapInfoStart(given, given, extra());
            break;
        }
        case 7:
        case 8: {
            const auto [given, count] = announcement();
            const int announced = kind();
            model_.startTransfer(announced, count);
            number == 7 ? recorder_->startTransfer(this, announced, given)
                        : recorder_->startSending(this, announced, given);
            break;
        }
        case 9: {
            const int ended = kind();
            model_.endTransfer(ended);
            recorder_->endTransfer(ended);
            break;
        }
        default:
            return lessOften(number);
        }
        return {};
    }
    std::string lessOften(int number) {
        switch (number) {
        case 10:
            recorder_->currentPosition(point(), byte());
            break;
        case 11: {
            const Report given = report();
            model_.warning(given);
            recorder_->warning(given);
            break;
        }
        case 12: {
            const Report given = report();
            model_.error(given);
            recorder_->error(given);
            break;
        }
        case 13: {
            const int given = byte() % 4;
            model_.gpsStateChange(given);
            recorder_->gpsStateChange(given);
            break;
        }
        case 14: {
            const auto given = raw<std::int32_t>();
            model_.sendProgress(given);
            recorder_->sendProgress(given);
            break;
        }
        case 15: {
            const int ended = kind();
            model_.endSending(ended);
            recorder_->endSending(ended);
            break;
        }
        case 16:
        case 17:
        case 18:
        case 19:
            return byOthers(number);
        default:
            addPoint(&RecorderModel::trackPoint, &RecordingGPSOutput::trackPoint);
        }
        return {};
    }
    /// What is no call of a receiver.
    std::string byOthers(int number) {
        switch (number) {
        case 16:
            setThinning();
            break;
        case 17:
            recorder_->appendArrayData(value(), recordedData::laps);
            ++model_.laps;
            break;
        case 18:
            if (filed(model_).size() < mostReplayed) { // each doubles what there is
                model_.replayIntoItself();
                recorder_->pushAllDataToOutput(*recorder_);
            }
            break;
        default:
            if (const std::string found = compare(); !found.empty()) {
                return found;
            }
            model_.clear();
            recorder_->clear();
        }
        return {};
    }
    void setThinning() {
        static constexpr std::array<float, 8> slops = {0.0001F, 0.01F, 0.0F,   1.0F,
                                                       5e-5F,   1e30F, 1e-40F, -1.0F};
        const std::uint8_t how = byte();
        model_.thinning.minimize = how % 4 != 0;
        model_.thinning.pointSlop = slops.at(how / 4 % slops.size());
        model_.thinning.slopeSlop = slops.at(how / 32);
        recorder_->setMinimizeTracks(model_.thinning.minimize);
        recorder_->setPointEqualSlop(model_.thinning.pointSlop);
        recorder_->setSlopeEqualSlop(model_.thinning.slopeSlop);
    }
    void addPoint(void (RecorderModel::*asModel)(const GPSPoint &, const Dictionary *),
                  void (RecordingGPSOutput::*asRecorder)(GPSPoint, const Dictionary *)) {
        const GPSPoint given = point();
        const Dictionary *with = extra();
        (model_.*asModel)(given, with);
        ((*recorder_).*asRecorder)(given, with);
    }

    [[nodiscard]] std::string compare() {
        while (mainThread::drain() != 0) {
        }
        const auto second = RecordingGPSOutput::recorder();
        recorder_->pushAllDataToOutput(*second);
        RecorderModel copy = model_;
        for (auto &track : copy.tracks) {
            track.hasPoints = true; // a copy of one that had none has an empty list
        }
        const bool hasData = !filed(model_).empty() || model_.laps != 0;
        for (const std::string &found :
             {difference(filed(*recorder_), filed(model_)),
              difference(state(*recorder_), state(model_)),
              difference(observer_->progress, model_.progress),
              difference(observer_->reports, model_.reports),
              difference(filed(*second), filed(copy)),
              std::string(observer_->completions != model_.completions ? "completions" : ""),
              std::string((recorder_->receivedData() != nullptr) != hasData ? "recorded data"
                                                                            : "")}) {
            if (!found.empty()) {
                return found;
            }
        }
        return {};
    }

    static constexpr std::size_t mostReplayed = 64;

    std::string_view rest_;
    RecorderModel model_;
    std::shared_ptr<RecordingGPSOutput> recorder_ = RecordingGPSOutput::recorder();
    std::shared_ptr<Observer> observer_ = std::make_shared<Observer>();
    GPSPoint last_;
    Dictionary extra_;
};

} // namespace pelluvia::testing
