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
        if (const int status = openTargets(); status != exitStatus::done) {
            return status;
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
    int openTargets() {
        const int status = open(options_.target, hasLiveSource(), target_);
        return status == exitStatus::done && options_.recording.telemetry
                   ? open(*options_.recording.telemetry, false, telemetry_)
                   : status;
    }

    int open(const std::string &path, bool isLive, std::unique_ptr<TargetFile> &file) const {
        std::error_code error;
        file = TargetFile::open(
            path,
            {.mayReplace = options_.force, .isSynced = options_.sync || isLive, .isLive = isLive},
            error);
        if (error == std::errc::file_exists) {
            complain(path + " is there already; --force replaces it");
            return exitStatus::wrongUsage;
        }
        return file == nullptr ? cannotWrite(path, error) : exitStatus::done;
    }

    /// Whether something is written as it comes that cannot be read again.
    [[nodiscard]] bool hasLiveSource() const {
        return recorder_ == nullptr &&
               std::any_of(options_.sources.begin(), options_.sources.end(), [](const auto &each) {
                   return each.format == Format::NMEA && !isRegularFile(each.path);
               });
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
            return notKept(options_.target, *target_, error, false);
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
        if (telemetry_ == nullptr || kept != status) {
            return kept;
        }
        const int both = keep(*options_.recording.telemetry, *telemetry_, status);
        if (both != status && status == exitStatus::done && !target_->keptName().empty()) {
            complain(target_->keptName() + " is complete");
        }
        return both;
    }

    [[nodiscard]] static int keep(const std::string &path, TargetFile &file, int status) {
        const bool isComplete = status == exitStatus::done;
        if (const std::error_code error = isComplete ? file.keep() : file.keepPartial()) {
            return notKept(path, file, error, isComplete);
        }
        if (!isComplete) {
            sayWhatIsPartial(path, file);
        }
        return status;
    }

    /// Says what there is nevertheless.
    static int notKept(const std::string &path, TargetFile &file, const std::error_code &error,
                       bool isComplete) {
        file.giveUp();
        cannotWrite(path, error);
        if (!file.keptName().empty()) {
            complain(file.keptName() + (isComplete ? " is complete" : " is partial"));
        }
        return exitStatus::cannotWrite;
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
