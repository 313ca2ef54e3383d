// SPDX-License-Identifier: MIT

/// \file
/// A library to be preloaded (LD_PRELOAD) that lets system calls of a program fail. It stands
/// before the C library, so it sees what the program and its libraries call, not what the C library
/// calls inside itself. The environment says what fails:
///
///     PELLUVIA_FAULT=write:ENOSPC:3      the third write; open, read, write, close, rename (rename
///     or
///                                        link) and sync are the calls
///     PELLUVIA_FAULT=write:ENOSPC:3+     the third and all later ones
///     PELLUVIA_FAULT_SEEN=/some/file     is made when that happens
///     PELLUVIA_FAULT_TMPFILE=1           files without a name cannot be made
///
/// The faults are EIO, ENOSPC, EINTR and "short": fewer bytes than asked for. Standard error is
/// left alone, or nobody could see what a program says. Each process counts for itself.

#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdarg>
#include <cstdlib>
#include <fcntl.h>
#include <string_view>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

namespace {

enum class Call { Open, Read, Write, Close, Rename, Sync };

/// What the environment asks for. Read by the first call: constructors of other libraries may come
/// before any of this one.
struct Fault {
    Call call = Call::Open;
    int number = 0; ///< from 1; 0 for none
    bool goesOn = false;
    bool isShort = false;
    int error = 0;
    const char *seen = nullptr;
    bool hasTemporaryFiles = true;
};

Call callNamed(std::string_view name) {
    return name == "open"     ? Call::Open
           : name == "read"   ? Call::Read
           : name == "write"  ? Call::Write
           : name == "close"  ? Call::Close
           : name == "rename" ? Call::Rename
                              : Call::Sync;
}

int errorNamed(std::string_view name) {
    return name == "EINTR" ? EINTR : name == "ENOSPC" ? ENOSPC : EIO;
}

Fault faultOfEnvironment() {
    Fault fault;
    fault.seen = std::getenv("PELLUVIA_FAULT_SEEN");                            // NOLINT
    fault.hasTemporaryFiles = std::getenv("PELLUVIA_FAULT_TMPFILE") == nullptr; // NOLINT
    const char *asked = std::getenv("PELLUVIA_FAULT");                          // NOLINT
    const std::string_view text = asked == nullptr ? "" : asked;
    const std::size_t first = text.find(':');
    const std::size_t second = text.rfind(':');
    if (first != std::string_view::npos && first != second) {
        const std::string_view kind = text.substr(first + 1, second - first - 1);
        fault.call = callNamed(text.substr(0, first));
        fault.isShort = kind == "short";
        fault.error = errorNamed(kind);
        fault.goesOn = text.ends_with('+');
        std::from_chars(text.data() + second + 1, text.data() + text.size(), fault.number);
    }
    return fault;
}

const Fault &fault() {
    static const Fault asked = faultOfEnvironment();
    return asked;
}

/// Whether this call is the one, or one of those, that is to fail.
bool isHit(Call call) {
    static std::atomic<int> count{0};
    const Fault &asked = fault();
    if (asked.number == 0 || call != asked.call) {
        return false;
    }
    const int number = ++count;
    if (number < asked.number || (number > asked.number && !asked.goesOn)) {
        return false;
    }
    if (asked.seen != nullptr) {
        const long made = ::syscall(SYS_openat, AT_FDCWD, asked.seen, O_WRONLY | O_CREAT, 0600);
        ::syscall(SYS_close, made);
    }
    return true;
}

int failed() {
    errno = fault().error;
    return -1;
}

int opened(int folder, const char *path, int flags, mode_t mode) {
    if (!fault().hasTemporaryFiles && (flags & O_TMPFILE) == O_TMPFILE) {
        errno = EOPNOTSUPP;
        return -1;
    }
    return isHit(Call::Open) ? failed()
                             : static_cast<int>(::syscall(SYS_openat, folder, path, flags, mode));
}

/// The mode behind the flags, which is there only for flags that make a file.
mode_t modeBehind(int flags, std::va_list arguments) {
    const bool isThere = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return isThere ? va_arg(arguments, mode_t) : 0;
}

/// How much of so many bytes is asked for when fewer are to come.
size_t fewer(size_t size) {
    return size / 2 + size % 2;
}

} // namespace

extern "C" {

int open(const char *path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeBehind(flags, arguments);
    va_end(arguments);
    return opened(AT_FDCWD, path, flags, mode);
}

int open64(const char *path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeBehind(flags, arguments);
    va_end(arguments);
    return opened(AT_FDCWD, path, flags, mode);
}

int openat(int folder, const char *path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeBehind(flags, arguments);
    va_end(arguments);
    return opened(folder, path, flags, mode);
}

int openat64(int folder, const char *path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeBehind(flags, arguments);
    va_end(arguments);
    return opened(folder, path, flags, mode);
}

// What a fortified program calls where no mode is given.
int __open_2(const char *path, int flags) { // NOLINT(bugprone-reserved-identifier)
    return opened(AT_FDCWD, path, flags, 0);
}

int __open64_2(const char *path, int flags) { // NOLINT(bugprone-reserved-identifier)
    return opened(AT_FDCWD, path, flags, 0);
}

int __openat_2(int folder, const char *path, int flags) { // NOLINT(bugprone-reserved-identifier)
    return opened(folder, path, flags, 0);
}

int __openat64_2(int folder, const char *path, int flags) { // NOLINT(bugprone-reserved-identifier)
    return opened(folder, path, flags, 0);
}

ssize_t read(int descriptor, void *buffer, size_t size) {
    if (isHit(Call::Read)) {
        if (!fault().isShort) {
            return failed();
        }
        size = fewer(size);
    }
    return ::syscall(SYS_read, descriptor, buffer, size);
}

// What a fortified program calls where the buffer's size is known, which the caller has then
// checked.
ssize_t __read_chk(int descriptor, void *buffer, size_t size, size_t /*bufferSize*/) { // NOLINT
    return read(descriptor, buffer, size);
}

ssize_t pread(int descriptor, void *buffer, size_t size, off_t position) {
    if (isHit(Call::Read)) {
        if (!fault().isShort) {
            return failed();
        }
        size = fewer(size);
    }
    return ::syscall(SYS_pread64, descriptor, buffer, size, position);
}

ssize_t pread64(int descriptor, void *buffer, size_t size, off64_t position) {
    return pread(descriptor, buffer, size, position);
}

ssize_t write(int descriptor, const void *bytes, size_t size) {
    if (descriptor != STDERR_FILENO && isHit(Call::Write)) {
        if (!fault().isShort) {
            return failed();
        }
        size = fewer(size);
    }
    return ::syscall(SYS_write, descriptor, bytes, size);
}

int close(int descriptor) {
    // As with the kernel, the descriptor is closed also when that fails.
    const bool hit = isHit(Call::Close);
    const auto result = static_cast<int>(::syscall(SYS_close, descriptor));
    return hit ? failed() : result;
}

int rename(const char *from, const char *to) noexcept {
    return isHit(Call::Rename) ? failed() : static_cast<int>(::syscall(SYS_rename, from, to));
}

int renameat(int fromFolder, const char *from, int toFolder, const char *to) noexcept {
    return isHit(Call::Rename)
               ? failed()
               : static_cast<int>(::syscall(SYS_renameat, fromFolder, from, toFolder, to));
}

int renameat2(int fromFolder, const char *from, int toFolder, const char *to,
              unsigned int flags) noexcept {
    return isHit(Call::Rename)
               ? failed()
               : static_cast<int>(::syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}

int link(const char *from, const char *to) noexcept {
    return isHit(Call::Rename) ? failed() : static_cast<int>(::syscall(SYS_link, from, to));
}

int linkat(int fromFolder, const char *from, int toFolder, const char *to, int flags) noexcept {
    return isHit(Call::Rename)
               ? failed()
               : static_cast<int>(::syscall(SYS_linkat, fromFolder, from, toFolder, to, flags));
}

int fsync(int descriptor) {
    return isHit(Call::Sync) ? failed() : static_cast<int>(::syscall(SYS_fsync, descriptor));
}

int fdatasync(int descriptor) {
    return isHit(Call::Sync) ? failed() : static_cast<int>(::syscall(SYS_fdatasync, descriptor));
}

} // extern "C"
