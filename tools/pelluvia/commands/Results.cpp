// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commands/Results.h>

#include <tools/pelluvia/commandline/ExitStatus.h>
#include <tools/pelluvia/terminal/Messages.h>

#include <filesystem>

namespace pelluvia::host {

int Results::open(bool isLive) {
    const int status = open(options_.target, isLive, target_);
    return status == exitStatus::done && options_.recording.telemetry
               ? open(*options_.recording.telemetry, false, telemetry_)
               : status;
}

int Results::open(const std::string &path, bool isLive, std::unique_ptr<TargetFile> &file) const {
    std::error_code error;
    file = TargetFile::open(
        path, {.mayReplace = options_.force, .isSynced = options_.sync || isLive, .isLive = isLive},
        error);
    if (error == std::errc::file_exists) {
        complain(path + " is there already; --force replaces it");
        return exitStatus::wrongUsage;
    }
    return file == nullptr ? cannotWrite(path, error) : exitStatus::done;
}

bool Results::mayWaitForReader() const {
    std::error_code error;
    return !std::filesystem::is_regular_file(target_->writePath(), error);
}

int Results::cannotWrite(const std::string &path, const std::error_code &error) {
    complain("cannot write " + targetName(path) + ": " + error.message());
    return exitStatus::cannotWrite;
}

int Results::cannotWriteTarget(const std::error_code &error) {
    return notKept(options_.target, *target_, error, false);
}

int Results::cannotWriteTelemetry(const std::error_code &error) const {
    return cannotWrite(*options_.recording.telemetry, error);
}

int Results::keep(int status, const std::string &whatIsMissing) {
    const int kept = keep(options_.target, *target_, status, whatIsMissing);
    if (telemetry_ == nullptr || kept != status) {
        return kept;
    }
    const int both = keep(*options_.recording.telemetry, *telemetry_, status, whatIsMissing);
    if (both != status && status == exitStatus::done && !target_->keptName().empty()) {
        complain(target_->keptName() + " is complete");
    }
    return both;
}

int Results::keep(const std::string &path, TargetFile &file, int status,
                  const std::string &whatIsMissing) {
    const bool isComplete = status == exitStatus::done;
    if (const std::error_code error = isComplete ? file.keep() : file.keepPartial()) {
        return notKept(path, file, error, isComplete);
    }
    if (!isComplete) {
        const std::string &kept = file.keptName();
        complain((kept.empty() ? targetName(path) : kept) + " is partial: " + whatIsMissing);
        if (file.isKeptBeside()) {
            complain(path + " is as it was");
        }
    }
    return status;
}

/// Says what there is nevertheless.
int Results::notKept(const std::string &path, TargetFile &file, const std::error_code &error,
                     bool isComplete) {
    const bool isKept = !file.keptName().empty();
    file.giveUp();
    cannotWrite(path, error);
    if (!file.keptName().empty()) {
        complain(file.keptName() + (!isKept      ? " holds what was written"
                                    : isComplete ? " is complete"
                                                 : " is partial"));
    }
    return exitStatus::cannotWrite;
}

} // namespace pelluvia::host
