#pragma once

#include <tools/pelluvia/files/TemporaryFile.h>

#include <memory>
#include <span>
#include <string>
#include <system_error>

namespace pelluvia::host {

/// Where a result goes. A regular file is written under a temporary name in its folder and gets its
/// own name at the end, so that a run that fails leaves what was there as it was; behind a symbolic
/// link it is the file that the link leads to. Pipes, devices and open descriptors are written
/// directly.
///
///     auto target = TargetFile::open(path, error);
///     … write to target->writePath() and close it …
///     error = target->keep();
///
/// Unless something is kept, nothing stays. Threads: none.
class TargetFile {
  public:
    /// Prepares the target; "-" is standard output. Null when it cannot be written, `error` then
    /// says why.
    [[nodiscard]] static std::unique_ptr<TargetFile> open(const std::string &path,
                                                          std::error_code &error);

    /// Whether results written to the two paths would mix, or one replace the other.
    [[nodiscard]] static bool isSamePlace(const std::string &first, const std::string &second);

    /// The path to write to.
    [[nodiscard]] const std::string &writePath() const noexcept;

    /// The result is complete: it gets the target's name.
    [[nodiscard]] std::error_code keep();

    /// The result is partial: it gets the target's name if that is free, and otherwise that name
    /// with ".partial" behind it, in place of an older file of that name; but for the paths that
    /// must stay, which it evades with one more ".partial".
    [[nodiscard]] std::error_code keepPartial(std::span<const std::string> mustStay = {});

    /// The name that the result was given; empty when it was written directly.
    [[nodiscard]] const std::string &keptName() const noexcept { return keptName_; }
    /// Whether that is not the target's own name, which another file has.
    [[nodiscard]] bool isKeptBeside() const noexcept {
        return !keptName_.empty() && keptName_ != path_;
    }

  private:
    TargetFile(std::string path, bool isReplacing, std::unique_ptr<TemporaryFile> file);
    [[nodiscard]] std::error_code keepAs(const std::string &name);

    std::string path_; ///< the target itself, links followed
    bool isReplacing_;
    std::unique_ptr<TemporaryFile> file_; ///< null when written directly
    std::string keptName_;
};

} // namespace pelluvia::host
