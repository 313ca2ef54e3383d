#include <tools/pelluvia/commands/Convert.h>

#include <tools/pelluvia/commandline/ExitStatus.h>
#include <tools/pelluvia/commands/ConversionProgress.h>
#include <tools/pelluvia/commands/Output.h>
#include <tools/pelluvia/commands/Recording.h>
#include <tools/pelluvia/commands/SourceReader.h>
#include <tools/pelluvia/files/SourceFile.h>
#include <tools/pelluvia/files/TargetFile.h>
#include <tools/pelluvia/terminal/InterruptWatch.h>
#include <tools/pelluvia/terminal/Messages.h>
#include <tools/pelluvia/terminal/ProgressBar.h>

#include <Pelluvia/gpxwriter/GPXExporter.h>

#include <algorithm>
#include <filesystem>
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
        output_ = Output::open(options_.targetFormat, target_->writePath(), collector_, progress_);
        if (output_.receiver == nullptr) {
            return cannotWrite(options_.target, output_.openFailure);
        }
        waitsForOthers_ = !isRegularFile(target_->writePath());
        watchInterrupts();
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

    /// Until nothing more can be written or is wanted. A bad source does not stop the others.
    int readSources() {
        SourceReader reader(options_, {.receiver = receiver(),
                                       .collector = collector_,
                                       .bar = bar_,
                                       .hasFailed = output_.hasFailed,
                                       .stop = progress_->stopToken(),
                                       .interrupts = interrupts_ ? interrupts_->descriptor() : -1});
        int status = exitStatus::done;
        for (const Source &source : options_.sources) {
            if (output_.hasFailed() || InterruptWatch::isInterrupted()) {
                break;
            }
            InterruptWatch::setMayGiveUp(waitsForOthers_ || mayWait(source));
            const auto fault = reader.read(source);
            if (bar_ != nullptr) {
                bar_->clear();
            }
            if (fault) {
                say(fault->text(sourceName(source.path)));
                ++badSources_;
                status = std::max(status, fault->status);
            }
            if (status == exitStatus::cannotWrite) {
                break; // the next would not be kept either
            }
        }
        InterruptWatch::setMayGiveUp(waitsForOthers_);
        return status;
    }

    /// A receiver sends until somebody has enough of it; what came until then is a whole result,
    /// and nothing may cost it any more.
    void watchInterrupts() {
        const auto &sources = options_.sources;
        if (std::any_of(sources.begin(), sources.end(),
                        [](const Source &each) { return each.format == Format::NMEA; })) {
            interrupts_.emplace();
        }
    }

    /// Whether reading the source may wait for another process, and does not see an interrupt
    /// meanwhile.
    static bool mayWait(const Source &source) {
        return source.format != Format::NMEA && !isRegularFile(source.path);
    }

    static bool isRegularFile(const std::string &path) {
        std::error_code error;
        return std::filesystem::is_regular_file(path == "-" ? "/dev/stdin" : path, error);
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

    void sayWhatIsPartial(const std::string &path, const TargetFile &file) const {
        const std::string &kept = file.keptName();
        const std::size_t sources = options_.sources.size();
        const std::string which = sources == 1 ? ""
                                               : "of " + std::to_string(badSources_) + " of " +
                                                     std::to_string(sources) + " sources ";
        complain((kept.empty() ? targetName(path) : kept) + " is partial: " + which +
                 "it holds what was read before the fault");
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
        return std::make_shared<ProgressBar>(show, std::chrono::steady_clock::now);
    }

    const ConvertOptions &options_;
    std::shared_ptr<ReportCollector> collector_ = std::make_shared<ReportCollector>();
    std::shared_ptr<ProgressBar> bar_ = makeBar();
    std::shared_ptr<ConversionProgress> progress_ = std::make_shared<ConversionProgress>(
        bar_, [this] { return output_.hasFailed() || InterruptWatch::isInterrupted(); });
    std::unique_ptr<TargetFile> target_;
    std::unique_ptr<TargetFile> telemetry_; ///< null when nobody asked for it
    Output output_;
    /// Null when nobody asked for it: then all goes straight to the target.
    std::shared_ptr<RecordingGPSOutput> recorder_ =
        makeRecorder(options_.recording, collector_, progress_);
    std::optional<InterruptWatch> interrupts_; ///< where a source may be a receiver's
    bool waitsForOthers_ = false;              ///< the target is a pipe, or something like one
    int badSources_ = 0;
};

} // namespace

int convert(const ConvertOptions &options) {
    return Conversion(options).run();
}

} // namespace pelluvia::host
