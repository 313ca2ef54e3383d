// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commands/Convert.h>

#include <tools/pelluvia/commandline/ExitStatus.h>
#include <tools/pelluvia/commands/ConversionProgress.h>
#include <tools/pelluvia/commands/Output.h>
#include <tools/pelluvia/commands/Recording.h>
#include <tools/pelluvia/commands/Results.h>
#include <tools/pelluvia/commands/SourceReader.h>
#include <tools/pelluvia/files/SourceFile.h>
#include <tools/pelluvia/terminal/InterruptWatch.h>
#include <tools/pelluvia/terminal/Messages.h>
#include <tools/pelluvia/terminal/ProgressBar.h>

#include <Pelluvia/gpxwriter/GPXExporter.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <string>
#include <system_error>
#include <unistd.h>

namespace pelluvia::host {

namespace {

/// A live recording waits for the disk so often: no power cut costs more than that.
constexpr std::chrono::seconds syncInterval{5};

/// One run of the command.
class Conversion {
  public:
    explicit Conversion(const ConvertOptions &options) : options_(options) {}

    int run() {
        if (!areSourcesReadable()) {
            return exitStatus::badInput;
        }
        if (const int status = results_.open(hasLiveSource()); status != exitStatus::done) {
            return status;
        }
        if (!options_.creator.empty()) {
            GPXExporter::setCreator(options_.creator);
        }
        output_ = Output::open(options_.targetFormat, results_.targetPath(), collector_, progress_);
        if (output_.receiver == nullptr) {
            return results_.cannotWriteTarget(output_.openFailure);
        }
        watchInterrupts();
        return finish(readSources());
    }

  private:
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

    /// Whether something is written as it comes that cannot be read again.
    [[nodiscard]] bool hasLiveSource() const {
        const auto isLive = [](const Source &each) {
            return each.format == Format::NMEA && !isRegularFile(each.path);
        };
        const auto &sources = options_.sources;
        return recorder_ == nullptr && std::any_of(sources.begin(), sources.end(), isLive);
    }

    /// A receiver sends until somebody has enough of it; what came until then is a whole result,
    /// and nothing may cost it any more.
    void watchInterrupts() {
        const auto isNMEA = [](const Source &each) { return each.format == Format::NMEA; };
        if (std::any_of(options_.sources.begin(), options_.sources.end(), isNMEA)) {
            interrupts_.emplace();
        }
    }

    /// Until nothing more can be written or is wanted. A bad source does not stop the others.
    int readSources() {
        SourceReader reader(options_, surroundings());
        int status = exitStatus::done;
        for (const Source &source : options_.sources) {
            // The next source cannot be kept either where one could not.
            if (mustStop() || status == exitStatus::cannotWrite) {
                break;
            }
            InterruptWatch::setMayGiveUp(mayWaitFor(source) || results_.mayWaitForReader());
            const auto pointsBefore = progress_->points();
            const auto fault = reader.read(source);
            if (bar_ != nullptr) {
                bar_->clear();
            }
            if (fault) {
                say(fault->text(sourceName(source.path)));
                status = std::max(status, fault->status);
                ++badSources_;
            } else if (source.format == Format::GPX && progress_->points() == pointsBefore &&
                       !mustStop()) { // as of a file of another kind of XML
                say(sourceName(source.path) + ": no points were found in it");
            }
        }
        InterruptWatch::setMayGiveUp(results_.mayWaitForReader());
        return status;
    }

    [[nodiscard]] SourceReader::Surroundings surroundings() {
        return {.receiver = recorder_ != nullptr ? recorder_ : output_.receiver,
                .collector = collector_,
                .bar = bar_,
                .hasFailed = [this] { return hasFailed(); },
                .stop = progress_->stopToken(),
                .sourcePaused = [this] { writeWhatIsKnown(); },
                .interrupts = interrupts_ ? interrupts_->descriptor() : -1};
    }

    [[nodiscard]] bool hasFailed() const { return output_.hasFailed() || syncFailure_; }
    [[nodiscard]] bool mustStop() const { return hasFailed() || InterruptWatch::isInterrupted(); }

    /// Whether reading the source may wait for another process, and does not see an interrupt
    /// meanwhile.
    static bool mayWaitFor(const Source &source) {
        return source.format != Format::NMEA && !isRegularFile(source.path);
    }

    /// While a live source pauses: for who reads along, and against power cuts.
    void writeWhatIsKnown() {
        output_.flush();
        const auto now = std::chrono::steady_clock::now();
        if (now - lastSync_ >= syncInterval) {
            syncFailure_ = results_.syncTarget();
            lastSync_ = now;
        }
        progress_->stopIfDue(); // the next points may be far
    }

    /// `status` is how reading ended.
    int finish(int status) {
        if (recorder_ != nullptr) {
            finishRecording(*recorder_);
            recorder_->pushAllDataToOutput(*output_.receiver);
        }
        const std::error_code writeFailure = output_.finish();
        if (const std::error_code error = writeFailure ? writeFailure : syncFailure_) {
            return results_.cannotWriteTarget(error);
        }
        if (const std::string remark = output_.remark ? output_.remark() : ""; !remark.empty()) {
            say(targetName(options_.target) + ": " + remark);
        }
        if (status == exitStatus::cannotWrite) {
            return status;
        }
        // Both are written before either gets its name.
        if (results_.hasTelemetry()) {
            if (const auto error = writeTelemetry(*recorder_, results_.telemetryPath())) {
                return results_.cannotWriteTelemetry(error);
            }
        }
        return results_.keep(status, whatIsMissing());
    }

    [[nodiscard]] std::string whatIsMissing() const {
        const std::size_t sources = options_.sources.size();
        const std::string which = sources == 1 ? ""
                                               : "of " + std::to_string(badSources_) + " of " +
                                                     std::to_string(sources) + " sources ";
        return which + "it holds what was read before the fault";
    }

    /// None but for a person that looks at a terminal.
    [[nodiscard]] std::shared_ptr<ProgressBar> makeBar() const {
        if (options_.quiet || ::isatty(STDERR_FILENO) == 0) {
            return nullptr;
        }
        return std::make_shared<ProgressBar>(show, std::chrono::steady_clock::now);
    }

    const ConvertOptions &options_;
    std::shared_ptr<ReportCollector> collector_ = std::make_shared<ReportCollector>();
    std::shared_ptr<ProgressBar> bar_ = makeBar();
    std::shared_ptr<ConversionProgress> progress_ =
        std::make_shared<ConversionProgress>(bar_, [this] { return mustStop(); });
    Results results_{options_};
    Output output_;
    /// Null when nobody asked for it: then all goes straight to the target.
    std::shared_ptr<RecordingGPSOutput> recorder_ =
        makeRecorder(options_.recording, collector_, progress_);
    std::optional<InterruptWatch> interrupts_; ///< where a source may be a receiver's
    std::chrono::steady_clock::time_point lastSync_ = std::chrono::steady_clock::now();
    std::error_code syncFailure_; ///< of a live recording, before its end
    int badSources_ = 0;
};

} // namespace

int convert(const ConvertOptions &options) {
    return Conversion(options).run();
}

} // namespace pelluvia::host
