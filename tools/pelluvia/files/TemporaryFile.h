#pragma once

#include <tools/pelluvia/files/Descriptor.h>

#include <cstddef>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <system_error>

namespace pelluvia::host {

/// A file under a temporary name, which is removed unless it is given a name of its own: at the end
/// of this object, and also when SIGHUP, SIGINT or SIGTERM ends the process meanwhile.
///
/// A process has few at a time, `most`, since a signal handler must find them. Threads: none.
class TemporaryFile {
  public:
    /// A new empty file in the folder of `path`, with a name made of its name. It gets the
    /// permissions, and where we may the owner, of `model`; without one, those of a new file. Null
    /// when it cannot be made; `error` then says why.
    [[nodiscard]] static std::unique_ptr<TemporaryFile>
    makeBeside(const std::string &path, const struct stat *model, std::error_code &error);

    static constexpr std::size_t most = 2;

    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;
    ~TemporaryFile();

    [[nodiscard]] const std::string &path() const noexcept { return path_; }

    /// Waits until the content is on the disk.
    [[nodiscard]] std::error_code sync() const;
    /// Gives the file a name, in place of another file that may have it.
    [[nodiscard]] std::error_code rename(const std::string &name);

  private:
    TemporaryFile(std::string path, Descriptor descriptor, char *pathToRemove) noexcept;

    std::string path_;
    Descriptor descriptor_;
    char *pathToRemove_; ///< the signal handler's copy of the path
};

} // namespace pelluvia::host
