// SPDX-License-Identifier: MIT

#pragma once

#include <tools/pelluvia/files/Descriptor.h>

#include <string>
#include <system_error>

namespace pelluvia::host {

/// Why a source cannot be read: what is missing, unreadable or a directory; no error when it looks
/// as if it could. Opens nothing that would wait for another process. "-" is standard input.
[[nodiscard]] std::error_code whyUnreadable(const std::string &path);

/// Whether there is a regular file at the path, which can be read again.
[[nodiscard]] bool isRegularFile(const std::string &path);

/// A source opened for reading once, from where it stands. "-" is standard input, of which a copy
/// of the descriptor is made.
[[nodiscard]] Descriptor openSource(const std::string &path, std::error_code &error);

/// A path under which a source can be read again and again, since an import reads its file up to
/// four times. A regular file is its own; anything else (standard input, a pipe) is first copied
/// into an unnamed temporary file, which vanishes with this object.
///
/// Threads: none.
class RereadableSource {
  public:
    /// What went wrong while the copy was made.
    struct Failure {
        std::error_code reading; ///< the source cannot be read
        std::error_code writing; ///< the copy cannot be written
        std::string folder;      ///< where the copy was to be

        explicit operator bool() const noexcept { return reading || writing; }
    };

    explicit RereadableSource(std::string path) : path_(std::move(path)) {}

    /// Makes the copy where one is needed; until then `path` must not be read.
    [[nodiscard]] Failure prepare();

    [[nodiscard]] const std::string &path() const noexcept { return path_; }

  private:
    [[nodiscard]] Failure copy(int source);

    std::string path_;
    Descriptor copy_;
};

} // namespace pelluvia::host
