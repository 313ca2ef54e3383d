// SPDX-License-Identifier: MIT

#pragma once

#include <tools/pelluvia/commandline/Options.h>
#include <tools/pelluvia/files/TargetFile.h>

#include <memory>
#include <string>
#include <system_error>

namespace pelluvia::host {

/// The files that a conversion writes: its target and, where it was asked for, the summary of the
/// recording. Both get their names at the end, or, where that goes wrong, messages on standard
/// error say what there is.
///
/// Threads: none.
class Results {
  public:
    /// The options are borrowed.
    explicit Results(const ConvertOptions &options) : options_(options) {}

    /// Prepares the files. `isLive`: what the target gets cannot be had a second time. The exit
    /// status; not `done` when there is nothing to write to.
    [[nodiscard]] int open(bool isLive);

    /// Where to write; only once they are open.
    [[nodiscard]] const std::string &targetPath() const { return target_->writePath(); }
    [[nodiscard]] const std::string &telemetryPath() const { return telemetry_->writePath(); }
    [[nodiscard]] bool hasTelemetry() const noexcept { return telemetry_ != nullptr; }
    /// Whether writing the target may wait without end for another process: for the reader of a
    /// pipe, or a terminal.
    [[nodiscard]] bool mayWaitForReader() const;

    /// Waits until the disk has what was written to the target so far.
    [[nodiscard]] std::error_code syncTarget() const { return target_->sync(); }

    /// The target, or the summary, could not be written. The exit status.
    int cannotWriteTarget(const std::error_code &error);
    int cannotWriteTelemetry(const std::error_code &error) const;

    /// Everything is written: gives the files their names. `status` is how reading ended; unless it
    /// is `done` they are partial, and `whatIsMissing` says in what way. The exit status.
    [[nodiscard]] int keep(int status, const std::string &whatIsMissing);

  private:
    [[nodiscard]] int open(const std::string &path, bool isLive,
                           std::unique_ptr<TargetFile> &file) const;
    static int cannotWrite(const std::string &path, const std::error_code &error);
    static int keep(const std::string &path, TargetFile &file, int status,
                    const std::string &whatIsMissing);
    static int notKept(const std::string &path, TargetFile &file, const std::error_code &error,
                       bool isComplete);

    const ConvertOptions &options_;
    std::unique_ptr<TargetFile> target_;
    std::unique_ptr<TargetFile> telemetry_; ///< null when nobody asked for it
};

} // namespace pelluvia::host
