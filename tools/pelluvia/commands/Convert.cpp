#include <tools/pelluvia/commands/Convert.h>

#include <Pelluvia/formats/calllog/CallLogReader.h>
#include <Pelluvia/formats/nmea/NMEADriver.h>
#include <tools/pelluvia/commandline/ExitStatus.h>
#include <tools/pelluvia/commands/CallFilter.h>
#include <tools/pelluvia/commands/Output.h>
#include <tools/pelluvia/commands/Recording.h>
#include <tools/pelluvia/files/InputFault.h>
#include <tools/pelluvia/files/SourceFile.h>
#include <tools/pelluvia/files/TargetFile.h>
#include <tools/pelluvia/terminal/InterruptWatch.h>
#include <tools/pelluvia/terminal/Messages.h>
#include <tools/pelluvia/terminal/ProgressBar.h>

#include <Pelluvia/gpximport/GPXFileImporter.h>
#include <Pelluvia/gpxwriter/GPXExporter.h>

#include <algorithm>
#include <optional>
#include <stop_token>
#include <string>
#include <unistd.h>
#include <vector>

namespace pelluvia::host {

namespace {

/// One run of the command.
class Conversion {
  public:
    explicit Conversion(const ConvertOptions &options) : options_(options) {}

    int run() {
        if (!areSourcesReadable()) {
            return exitStatus::badInput;
        }
        if (!open(options_.target, target_) ||
            (options_.recording.telemetry && !open(*options_.recording.telemetry, telemetry_))) {
            return exitStatus::cannotWrite;
        }
        if (!options_.creator.empty()) {
            GPXExporter::setCreator(options_.creator);
        }
        output_ = Output::open(options_.targetFormat, target_->writePath(), collector_, bar_);
        if (output_.receiver == nullptr) {
            return cannotWrite(options_.target, output_.openFailure);
        }
        return finish(readSources());
    }

  private:
    static bool open(const std::string &path, std::unique_ptr<TargetFile> &file) {
        std::error_code error;
        file = TargetFile::open(path, error);
        if (file == nullptr) {
            cannotWrite(path, error);
        }
        return file != nullptr;
    }

    /// Whom the producers call: the target, or the recorder before it.
    [[nodiscard]] std::shared_ptr<GPSOutputReceiver> receiver() const {
        return recorder_ != nullptr ? recorder_ : output_.receiver;
    }

    /// Before the target is made; a source may still turn out bad when its turn comes.
    [[nodiscard]] bool areSourcesReadable() const {
        bool result = true;
        for (const Source &source : options_.sources) {
            if (const std::error_code error = whyUnreadable(source.path)) {
                complain(sourceName(source.path) + ": " + error.message());
                result = false;
            }
        }
        return result;
    }

    /// Up to the first fault, or until nothing more can be written or is wanted.
    int readSources() {
        for (const Source &source : options_.sources) {
            if (output_.hasFailed() || isInterrupted_) {
                break;
            }
            const auto fault = read(source);
            if (bar_ != nullptr) {
                bar_->clear();
            }
            if (fault) {
                say(fault->text(sourceName(source.path)));
                return fault->status;
            }
        }
        return exitStatus::done;
    }

    std::optional<InputFault> read(const Source &source) {
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

    std::optional<InputFault> importGPX(const std::string &path) {
        RereadableSource source(path);
        if (const auto failure = source.prepare()) {
            return faultOf(failure);
        }
        const auto importer = GPXFileImporter::initWithReceiver(receiver());
        importer->setDoTracks(options_.only.tracks);
        importer->setDoRoutes(options_.only.routes);
        importer->setDoWaypoints(options_.only.waypoints);
        const ErrorPtr error = importer->processFile(source.path());
        const auto reports = collector_->collected();
        if (error == nullptr) {
            return std::nullopt;
        }
        return InputFault::from(*error, reports.texts.empty() ? "" : reports.texts.back());
    }

    static InputFault faultOf(const RereadableSource::Failure &failure) {
        if (failure.reading) {
            return {.message = failure.reading.message()};
        }
        return {.message = "cannot be kept in " + failure.folder +
                           " (see TMPDIR): " + failure.writing.message(),
                .status = exitStatus::cannotWrite};
    }

    std::optional<InputFault> readCallLog(const std::string &path) {
        std::error_code error;
        const Descriptor source = openSource(path, error);
        if (error) {
            return InputFault{.message = error.message()};
        }
        const auto receiver = filtered();
        CallLogReader reader(*receiver);
        const ErrorPtr fault = reader.processDescriptor(source.number());
        sayWhatWasReported(path);
        if (fault == nullptr) {
            return std::nullopt;
        }
        return InputFault{.line = fault->integer(callLogErrorLine),
                          .column = fault->integer(callLogErrorColumn),
                          .message = fault->localizedDescription()};
    }

    std::optional<InputFault> readNMEA(const std::string &path) {
        // A receiver sends until somebody has enough of it; what came until then is a whole result.
        const InterruptWatch interrupts;
        const auto receiver = filtered();
        NMEADriver driver(*receiver);
        driver.setBaudRate(options_.nmea.baud);
        driver.setLongestGap(options_.nmea.longestGap);
        driver.setDay(options_.nmea.day);
        driver.setEndDescriptor(interrupts.descriptor());
        std::stop_source stop;
        driver.setStopToken(stop.get_token());
        driver.setSourcePaused([&] {
            if (output_.hasFailed()) {
                stop.request_stop(); // a receiver would send for ever
            }
        });
        if (bar_ != nullptr) {
            driver.setStatusLine([this](std::string_view text) {
                bar_->setMuted(true);
                writeToTerminal(text);
            });
        }
        const ErrorPtr error =
            path == "-" ? driver.processDescriptor(STDIN_FILENO) : driver.processFile(path);
        if (bar_ != nullptr) {
            bar_->setMuted(false);
        }
        isInterrupted_ = driver.ending() == NMEAEnding::Interrupted;
        // The receiver was told, too, of what is returned.
        [[maybe_unused]] const auto reports = collector_->collected();
        if (driver.ending() != NMEAEnding::NotOpened) {
            say(sourceName(path) + ": " + textOf(driver.tally()));
        }
        return error != nullptr && driver.ending() != NMEAEnding::Stopped
                   ? std::optional(InputFault{.message = error->localizedDescription()})
                   : std::nullopt;
    }

    /// A log may end the exchange by itself. A GPX document gets its end from us, since other
    /// sources may follow.
    [[nodiscard]] std::shared_ptr<GPSOutputReceiver> filtered() const {
        const bool holdsFinish = options_.targetFormat == Format::GPX;
        if (!holdsFinish && options_.only.isEverything()) {
            return receiver();
        }
        return std::make_shared<CallFilter>(receiver(), options_.only, holdsFinish);
    }

    void sayWhatWasReported(const std::string &path) {
        const auto reports = collector_->collected();
        for (const std::string &text : reports.texts) {
            say(sourceName(path) + ": reported by the producer: " + text);
        }
        if (reports.more != 0) {
            say(sourceName(path) + ": and " + std::to_string(reports.more) + " other reports");
        }
    }

    /// `status` is how reading ended.
    int finish(int status) {
        if (recorder_ != nullptr) {
            finishRecording(*recorder_);
            recorder_->pushAllDataToOutput(*output_.receiver);
        }
        if (const std::error_code error = output_.finish()) {
            return cannotWrite(options_.target, error);
        }
        if (const std::string remark = output_.remark ? output_.remark() : ""; !remark.empty()) {
            say(targetName(options_.target) + ": " + remark);
        }
        if (status == exitStatus::cannotWrite) {
            return status;
        }
        // Both are written before either gets its name.
        if (telemetry_ != nullptr) {
            if (const auto error = writeTelemetry(*recorder_, telemetry_->writePath())) {
                return cannotWrite(*options_.recording.telemetry, error);
            }
        }
        const int kept = keep(options_.target, *target_, status);
        return telemetry_ == nullptr || kept != status
                   ? kept
                   : keep(*options_.recording.telemetry, *telemetry_, status);
    }

    [[nodiscard]] int keep(const std::string &path, TargetFile &file, int status) const {
        const bool isComplete = status == exitStatus::done;
        if (const std::error_code error =
                isComplete ? file.keep() : file.keepPartial(sourcePaths())) {
            return cannotWrite(path, error);
        }
        if (!isComplete) {
            sayWhatIsPartial(path, file);
        }
        return status;
    }

    [[nodiscard]] std::vector<std::string> sourcePaths() const {
        std::vector<std::string> paths;
        for (const Source &source : options_.sources) {
            paths.push_back(source.path);
        }
        return paths;
    }

    static void sayWhatIsPartial(const std::string &path, const TargetFile &file) {
        const std::string &kept = file.keptName();
        complain((kept.empty() ? targetName(path) : kept) +
                 " is partial: it holds what was read before the fault");
        if (file.isKeptBeside()) {
            complain(path + " is as it was");
        }
    }

    static int cannotWrite(const std::string &path, const std::error_code &error) {
        complain("cannot write " + targetName(path) + ": " + error.message());
        return exitStatus::cannotWrite;
    }

    /// None but for a person that looks at a terminal.
    [[nodiscard]] std::shared_ptr<ProgressBar> makeBar() const {
        if (options_.quiet || ::isatty(STDERR_FILENO) == 0) {
            return nullptr;
        }
        return std::make_shared<ProgressBar>(writeToTerminal, std::chrono::steady_clock::now);
    }

    static void writeToTerminal(std::string_view text) {
        [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, text.data(), text.size());
    }

    const ConvertOptions &options_;
    std::shared_ptr<ReportCollector> collector_ = std::make_shared<ReportCollector>();
    std::shared_ptr<ProgressBar> bar_ = makeBar();
    std::unique_ptr<TargetFile> target_;
    std::unique_ptr<TargetFile> telemetry_; ///< null when nobody asked for it
    Output output_;
    /// Null when nobody asked for it: then all goes straight to the target.
    std::shared_ptr<RecordingGPSOutput> recorder_ =
        makeRecorder(options_.recording, collector_, bar_);
    bool isInterrupted_ = false; ///< the user has enough
};

} // namespace

int convert(const ConvertOptions &options) {
    return Conversion(options).run();
}

} // namespace pelluvia::host
