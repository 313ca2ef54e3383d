// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/storage/internal/FileDescriptor.h>

#include <cerrno>
#include <sys/file.h>
#include <utility>

namespace pelluvia::storage {

/// Holds a lock on a file, for which other threads and processes wait, or none.
class FileLock {
  public:
    FileLock() = default;
    FileLock(const FileLock &) = delete;
    FileLock &operator=(const FileLock &) = delete;
    ~FileLock() {
        // Closing alone would not do: a child forked in the meantime has the file open, too.
        if (file_.isOpen()) {
            ::flock(file_.number(), LOCK_UN);
        }
    }

    /// Waits for the lock; to be called once. Returns an error number.
    [[nodiscard]] int take(FileDescriptor file) noexcept {
        file_ = std::move(file);
        while (::flock(file_.number(), LOCK_EX) != 0) {
            if (errno != EINTR) {
                return errno;
            }
        }
        return 0;
    }

  private:
    FileDescriptor file_;
};

} // namespace pelluvia::storage
