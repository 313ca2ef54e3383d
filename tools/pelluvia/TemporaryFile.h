#pragma once

#include <tools/pelluvia/Descriptor.h>

#include <memory>
#include <string>
#include <sys/stat.h>
#include <system_error>

namespace pelluvia::host {

/// A file under a temporary name, which is removed unless it is given a name of its own: at the end
/// of this object, and also when SIGHUP, SIGINT or SIGTERM ends the process meanwhile.
///
/// A process has at most one at a time, since a signal handler must find it. Threads: none.
class TemporaryFile {
  public:
    /// A new empty file in the folder of `path`, with a name made of its name. It gets the
    /// permissions, and where we may the owner, of `model`; without one, those of a new file. Null
    /// when it cannot be made; `error` then says why.
    [[nodiscard]] static std::unique_ptr<TemporaryFile>
    makeBeside(const std::string &path, const struct stat *model, std::error_code &error);

    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;
    ~TemporaryFile();

    [[nodiscard]] const std::string &path() const noexcept { return path_; }

    /// Waits until the content is on the disk.
    [[nodiscard]] std::error_code sync() const;
    /// Gives the file a name, in place of another file that may have it.
    [[nodiscard]] std::error_code rename(const std::string &name);

  private:
    TemporaryFile(std::string path, Descriptor descriptor) noexcept;

    std::string path_;
    Descriptor descriptor_;
};

} // namespace pelluvia::host
