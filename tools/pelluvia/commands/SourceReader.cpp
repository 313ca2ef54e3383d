// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commands/SourceReader.h>

#include <tools/pelluvia/commands/CallFilter.h>
#include <tools/pelluvia/commands/FormatHint.h>
#include <tools/pelluvia/files/SourceFile.h>
#include <tools/pelluvia/terminal/Messages.h>

#include <Pelluvia/formats/calllog/CallLogReader.h>
#include <Pelluvia/formats/nmea/NMEADriver.h>
#include <Pelluvia/gpximport/GPXFileImporter.h>
#include <Pelluvia/values/CocoaErrors.h>

#include <stop_token>
#include <unistd.h>

namespace pelluvia::host {

namespace {

InputFault faultOf(const RereadableSource::Failure &failure) {
    if (failure.reading) {
        return {.message = failure.reading.message()};
    }
    return {.message = "cannot be kept in " + failure.folder +
                       " (see TMPDIR): " + failure.writing.message(),
            .status = exitStatus::cannotWrite};
}

/// Lets a bar, if there is one, ask how far reading is while this object lives.
class ReadingShown {
  public:
    ReadingShown(std::shared_ptr<ProgressBar> bar, ProgressBar::Reading reading)
        : bar_(std::move(bar)) {
        if (bar_ != nullptr) {
            bar_->setReading(std::move(reading));
        }
    }
    ReadingShown(const ReadingShown &) = delete;
    ReadingShown &operator=(const ReadingShown &) = delete;
    ~ReadingShown() {
        if (bar_ != nullptr) {
            bar_->setReading(nullptr);
        }
    }

  private:
    std::shared_ptr<ProgressBar> bar_;
};

bool isStop(const Error &error) {
    return error.domain() == NSCocoaErrorDomain && error.code() == NSUserCancelledError;
}

} // namespace

std::optional<InputFault> SourceReader::read(const Source &source) {
    switch (source.format) {
    case Format::Calls:
        return readCallLog(source.path);
    case Format::NMEA:
        return readNMEA(source.path);
    case Format::GPX:
        break;
    }
    return importGPX(source.path);
}

std::optional<InputFault> SourceReader::importGPX(const std::string &path) {
    RereadableSource source(path);
    if (const auto failure = source.prepare()) {
        return faultOf(failure);
    }
    const auto importer = GPXFileImporter::initWithReceiver(with_.receiver);
    importer->setDoTracks(options_.only.tracks);
    importer->setDoRoutes(options_.only.routes);
    importer->setDoWaypoints(options_.only.waypoints);
    importer->setStopToken(with_.stop);
    const ReadingShown shown(with_.bar, [&importer] { return importer->readingProgress(); });
    const ErrorPtr error = importer->processFile(source.path());
    const auto reports = with_.collector->collected();
    if (error == nullptr) {
        return std::nullopt;
    }
    if (isStop(*error)) {
        return faultOfStop();
    }
    if (const std::string hint = formatHint(source.path()); !hint.empty()) {
        return InputFault{.message = hint};
    }
    return InputFault::from(*error, reports.texts.empty() ? "" : reports.texts.back());
}

std::optional<InputFault> SourceReader::readCallLog(const std::string &path) {
    std::error_code error;
    const Descriptor source = openSource(path, error);
    if (error) {
        return InputFault{.message = error.message()};
    }
    const auto receiver = filtered();
    CallLogReader reader(*receiver);
    reader.setStopToken(with_.stop);
    reader.setSourcePaused(with_.sourcePaused);
    const ReadingShown shown(with_.bar, [&reader] { return reader.readingProgress(); });
    const ErrorPtr fault = reader.processDescriptor(source.number());
    sayWhatWasReported(path);
    if (fault == nullptr) {
        return std::nullopt;
    }
    if (isStop(*fault)) {
        return faultOfStop();
    }
    receiver->endOpenTransfer();
    return InputFault{.line = fault->integer(callLogErrorLine),
                      .column = fault->integer(callLogErrorColumn),
                      .message = fault->localizedDescription()};
}

std::optional<InputFault> SourceReader::readNMEA(const std::string &path) {
    const auto receiver = filtered();
    NMEADriver driver(*receiver);
    driver.setBaudRate(options_.nmea.baud);
    driver.setLongestGap(options_.nmea.longestGap);
    driver.setDay(options_.nmea.day);
    driver.setEndDescriptor(with_.interrupts);
    // An interrupt ends the source and not more; that nothing can be written any more stops it.
    std::stop_source failure;
    const std::stop_callback whenStopped(with_.stop, [&] {
        if (with_.hasFailed()) {
            failure.request_stop();
        }
    });
    driver.setStopToken(failure.get_token());
    driver.setSourcePaused(with_.sourcePaused);
    const auto &bar = with_.bar;
    if (bar != nullptr) {
        driver.setStatusLine([&bar](std::string_view bytes) {
            bar->setMuted(true);
            show(bytes);
        });
    }
    const ReadingShown shown(bar, [&driver] { return driver.readingProgress(); });
    const ErrorPtr error =
        path == "-" ? driver.processDescriptor(STDIN_FILENO) : driver.processFile(path);
    if (bar != nullptr) {
        bar->setMuted(false);
    }
    // The receiver was told, too, of what is returned.
    [[maybe_unused]] const auto reports = with_.collector->collected();
    if (driver.ending() != NMEAEnding::NotOpened) {
        say(sourceName(path) + ": " + textOf(driver.tally()));
    }
    // What has stopped it is said of the target.
    if (error == nullptr || driver.ending() == NMEAEnding::Stopped) {
        return std::nullopt;
    }
    return InputFault{.message = error->localizedDescription()};
}

/// A log may end the exchange by itself. A GPX document gets its end from us, since other sources
/// may follow.
std::shared_ptr<CallFilter> SourceReader::filtered() const {
    return std::make_shared<CallFilter>(with_.receiver, options_.only,
                                        options_.targetFormat == Format::GPX);
}

/// What is missing of a source that was stopped. Of one that could not be written it is not said:
/// that is the target's fault.
std::optional<InputFault> SourceReader::faultOfStop() const {
    return with_.hasFailed() ? std::nullopt : std::optional(InputFault{.message = "interrupted"});
}

void SourceReader::sayWhatWasReported(const std::string &path) {
    const auto reports = with_.collector->collected();
    for (const std::string &text : reports.texts) {
        say(sourceName(path) + ": reported by the producer: " + text);
    }
    if (reports.more != 0) {
        say(sourceName(path) + ": and " + std::to_string(reports.more) + " other reports");
    }
}

} // namespace pelluvia::host
