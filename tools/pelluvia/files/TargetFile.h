// SPDX-License-Identifier: MIT

#pragma once

#include <tools/pelluvia/files/TemporaryFile.h>

#include <memory>
#include <string>
#include <system_error>

namespace pelluvia::host {

/// Where a result goes. A regular file is written without a name in its folder and gets its name at
/// the end, so that a run that fails leaves what was there as it was; behind a symbolic link it is
/// the file that the link leads to. Pipes, devices and open descriptors are written directly.
///
///     auto target = TargetFile::open(path, {}, error);
///     … write to target->writePath() and close it …
///     error = target->keep();
///
/// Unless something is kept, nothing stays, but of a live target. Threads: none.
class TargetFile {
  public:
    struct Options {
        /// A file of that name may be replaced.
        bool mayReplace = false;
        /// The disk has the result before it gets its name, and the name before `keep` returns. A
        /// file is never replaced before the disk has the new one.
        bool isSynced = false;
        /// The result cannot be had a second time: it has the name of a partial result from the
        /// start, and stays there when the process is killed or the machine stops.
        bool isLive = false;
    };

    TargetFile(const TargetFile &) = delete;
    TargetFile &operator=(const TargetFile &) = delete;
    ~TargetFile();

    /// Prepares the target; "-" is standard output. Null when it cannot be written, `error` then
    /// says why: `std::errc::file_exists` when there is a file that may not be replaced.
    [[nodiscard]] static std::unique_ptr<TargetFile>
    open(const std::string &path, const Options &options, std::error_code &error);

    /// Whether results written to the two paths would mix, or one replace the other.
    [[nodiscard]] static bool isSamePlace(const std::string &first, const std::string &second);

    /// The path to write to; of a regular file it names an open descriptor ("/dev/fd/N").
    [[nodiscard]] const std::string &writePath() const noexcept { return writePath_; }

    /// Waits until the disk has what was written so far, which must not be in a buffer any more. Of
    /// use for a live target; where nothing can be synced it does nothing.
    [[nodiscard]] std::error_code sync() const noexcept;

    /// The result is complete: it gets the target's name. When a file of that name has appeared
    /// meanwhile that may not be replaced, it is kept as a partial result is, and the error is
    /// `std::errc::file_exists`. Another error with a kept name says that the disk may not have
    /// that name yet.
    [[nodiscard]] std::error_code keep();

    /// The result is partial: it gets the target's name if that is free, and otherwise that name
    /// with ".partial" behind it, or ".partial.2" and so on. Errors as above.
    [[nodiscard]] std::error_code keepPartial();

    /// There will be no result, since it could not be written. Of a live target stays what reached
    /// the file, if anything did, under the name that it has.
    void giveUp();

    /// The name that the result was given; empty when it was written directly, or is not kept.
    [[nodiscard]] const std::string &keptName() const noexcept { return keptName_; }
    /// Whether that is not the target's own name, which another file has.
    [[nodiscard]] bool isKeptBeside() const noexcept {
        return !keptName_.empty() && keptName_ != path_;
    }

  private:
    TargetFile(std::string path, const Options &options, std::unique_ptr<TemporaryFile> file);
    [[nodiscard]] std::error_code keepBeside();
    [[nodiscard]] std::error_code kept(const std::string &name, bool isSynced);

    std::string path_; ///< the target itself, links followed
    Options options_;
    std::unique_ptr<TemporaryFile> file_; ///< null when written directly
    std::string writePath_;
    std::string keptName_;
};

} // namespace pelluvia::host
