#pragma once

#include <Pelluvia/model/GPSOutputReceiver.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace pelluvia::testing {

/// One call as a receiver saw it. Arguments that the call does not have keep their defaults.
struct SeenCall {
    std::string name;
    GPSPoint point = {};
    GPSPoint end = {};
    int number = 0; ///< kind, state, count or accuracy
    std::optional<Dictionary> extra = std::nullopt;
    Report report = {};
};

/// Keeps all calls, in order.
class CallCollector : public GPSOutputReceiver {
  public:
    std::vector<SeenCall> calls;

    /// The names of the calls, each with its number, if that is not 0, behind it.
    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> result;
        for (const SeenCall &call : calls) {
            result.push_back(call.number != 0 ? call.name + std::to_string(call.number)
                                              : call.name);
        }
        return result;
    }

    void newTrackSegment() override { add({.name = "newTrackSegment"}); }
    void newTrack(const Dictionary *extra) override {
        add({.name = "newTrack:", .extra = copy(extra)});
    }
    void newRoute(const Dictionary *extra) override {
        add({.name = "newRoute:", .extra = copy(extra)});
    }
    void trackPoint(GPSPoint point, const Dictionary *extra) override {
        add({.name = "trackPoint:extra:", .point = point, .extra = copy(extra)});
    }
    void wayPoint(GPSPoint point, const Dictionary *extra) override {
        add({.name = "wayPoint:extra:", .point = point, .extra = copy(extra)});
    }
    void routePoint(GPSPoint point, const Dictionary *extra) override {
        add({.name = "routePoint:extra:", .point = point, .extra = copy(extra)});
    }
    void poiPoint(GPSPoint point, const Dictionary *extra) override {
        add({.name = "poiPoint:extra:", .point = point, .extra = copy(extra)});
    }
    void lapInfoStart(GPSPoint start, GPSPoint end, const Dictionary *extras) override {
        add({.name = "lapInfoStart:end:extras:",
             .point = start,
             .end = end,
             .extra = copy(extras)});
    }
    void startTransfer(const void * /*sender*/, int kind, const Dictionary *extra) override {
        add({.name = "startTransfer:kind:extra:", .number = kind, .extra = copy(extra)});
    }
    void endTransfer(int kind) override { add({.name = "endTransfer:", .number = kind}); }
    void currentPosition(GPSPoint point, int accuracy) override {
        add({.name = "currentPosition:accuracy:", .point = point, .number = accuracy});
    }
    void warning(const Report &object) override { add({.name = "warning:", .report = object}); }
    void error(const Report &error) override { add({.name = "error:", .report = error}); }
    void gpsStateChange(int state) override { add({.name = "gpsStateChange:", .number = state}); }
    void startSending(const void * /*sender*/, int kind, const Dictionary *extra) override {
        add({.name = "startSending:kind:extra:", .number = kind, .extra = copy(extra)});
    }
    void sendProgress(int count) override { add({.name = "sendProgress:", .number = count}); }
    void endSending(int kind) override { add({.name = "endSending:", .number = kind}); }

  private:
    static std::optional<Dictionary> copy(const Dictionary *dictionary) {
        return dictionary != nullptr ? std::optional(*dictionary) : std::nullopt;
    }
    void add(SeenCall call) { calls.push_back(std::move(call)); }
};

} // namespace pelluvia::testing
