// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Export.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace pelluvia {

/// A file being written through one large buffer: at a path, on a descriptor of the host's, or a
/// string in memory.
///
///     std::error_code error;
///     const auto file = OutputFile::open("ride.txt", error);
///     if (file == nullptr) { ... }        // `error` says why
///     file->write("47.37 8.54\n");
///     if (file->close()) { ... }          // not everything was written
///
/// Writing never fails on the spot: the first failure is remembered, what follows is thrown away,
/// and `failure` tells. So code that writes needs no checks and code that must know can ask.
///
/// Nothing is synchronised to the disk unless the host asks for it with `sync`. A pipe without a
/// reader raises SIGPIPE; a host that would rather have a failure ignores that signal.
///
/// Threads: one at a time.
class PELLUVIA_EXPORT OutputFile {
  public:
    /// Opens the path (UTF-8) for writing, truncating what is there or making a new file (mode 0666
    /// less the umask). Null when that fails; `error` then says why, a code of `errno`'s. A path
    /// that holds a NUL, which the system would take for a shorter one, is refused (EINVAL).
    ///
    /// A path that names one of the process's open descriptors (see `descriptorNamedBy`) means that
    /// descriptor as it is: writing goes on at its position, nothing is truncated, and what the
    /// host shares it with, or opened it with for appending, is respected. The host's own
    /// descriptor stays open.
    [[nodiscard]] static std::unique_ptr<OutputFile> open(const std::string &path,
                                                          std::error_code &error);

    /// Writes to an open descriptor, at its position. It stays the host's: it is not closed, and
    /// has to stay open until this file is closed or gone. Null when it is not open for writing;
    /// `error` then says why.
    [[nodiscard]] static std::unique_ptr<OutputFile> onBorrowedDescriptor(int descriptor,
                                                                          std::error_code &error);

    /// The same with a descriptor that becomes this file's own, which closes it. Where the result
    /// is null it is still the host's.
    [[nodiscard]] static std::unique_ptr<OutputFile> onOwnedDescriptor(int descriptor,
                                                                       std::error_code &error);

    /// Appends to a string, which has to outlive this file and not to be touched by others until it
    /// is closed or gone. Like a file's, the content is all there after `flush` or `close`.
    [[nodiscard]] static std::unique_ptr<OutputFile> inMemory(std::string &text);

    /// The descriptor that a path names: N of "/dev/fd/N" and "/proc/self/fd/N", and those of
    /// "/dev/stdin", "/dev/stdout" and "/dev/stderr". Nothing for every other path.
    [[nodiscard]] static std::optional<int> descriptorNamedBy(std::string_view path) noexcept;

    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;
    /// Closes the file if `close` was not called; whether that worked is then not to be known.
    ~OutputFile();

    /// Appends the bytes, any number.
    void write(std::string_view bytes) {
        if (bytes.size() > bufferSize - used_) {
            return writeThrough(bytes);
        }
        used_ += bytes.copy(buffer_.get() + used_, bytes.size());
    }

    /// At least `size` bytes (at most `largestReservation`) to write into directly; `commit` says
    /// where writing ended. For code that formats many small pieces with one bounds check.
    [[nodiscard]] char *reserve(std::size_t size);
    /// Makes everything up to `end`, a position in the last reservation, part of the file. Nothing
    /// else may be written in between.
    void commit(const char *end) noexcept { used_ = static_cast<std::size_t>(end - buffer_.get()); }

    /// Writes what is still buffered. Returns `failure()`.
    std::error_code flush();
    /// Flushes, and waits until the disk has everything (`fsync`), so that even a power cut does
    /// not cost it. That can take long. Returns `failure()`. Where there is no disk behind (a pipe,
    /// a terminal, memory), it is a flush.
    std::error_code sync();
    /// Flushes and closes. Returns `failure()`. What is written later is thrown away; closing again
    /// does nothing.
    std::error_code close();

    /// The first failure of any write or of closing; no error while all went well.
    [[nodiscard]] std::error_code failure() const noexcept { return failure_; }

    /// The most that `reserve` gives.
    static constexpr std::size_t largestReservation = 16 * 1024;

  private:
    // Large enough that the cost of a system call a block no longer shows.
    PELLUVIA_HIDDEN static constexpr std::size_t bufferSize = 256 * 1024;
    static_assert(largestReservation < bufferSize);

    OutputFile();
    [[nodiscard]] PELLUVIA_HIDDEN static std::unique_ptr<OutputFile>
    onDescriptor(int descriptor, bool isOwned, std::error_code &error);

    /// Writes a whole buffer to where it belongs.
    PELLUVIA_HIDDEN void writeToDescriptor(std::string_view bytes);
    PELLUVIA_HIDDEN void writeToMemory(std::string_view bytes);
    /// Appends bytes that do not fit the buffer, which is written each time it is full.
    void writeThrough(std::string_view bytes);

    std::unique_ptr<char[]> buffer_;
    std::size_t used_ = 0;
    int descriptor_ = -1;
    bool isOwned_ = true;           ///< whether the descriptor is closed here
    std::string *memory_ = nullptr; ///< in place of a descriptor; borrowed
    std::error_code failure_;
};

} // namespace pelluvia
