// SPDX-License-Identifier: MIT

#include <Pelluvia/system/OutputFile.h>

#include <array>
#include <cassert>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace pelluvia {

namespace {

std::error_code lastError() {
    return {errno, std::generic_category()};
}

/// Opens a path; the result and `errno` are those of `open`.
int openPath(const std::string &path) {
    constexpr mode_t mode = 0666;
    if (path.find('\0') != std::string::npos) { // the system would see another, shorter path
        errno = EINVAL;
        return -1;
    }
    int descriptor = -1;
    do {
        descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

/// Whether a write that has just failed is worth another try. Where the descriptor was made not to
/// block (by whoever the host shares it with), that is when it takes bytes again.
bool isWorthAnotherTry(int descriptor) {
    if (errno == EAGAIN) {
        pollfd writable = {descriptor, POLLOUT, 0};
        return ::poll(&writable, 1, -1) >= 0 || errno == EINTR;
    }
    return errno == EINTR;
}

} // namespace

std::optional<int> OutputFile::descriptorNamedBy(std::string_view path) noexcept {
    constexpr std::array<std::string_view, 3> standardStreams = {"/dev/stdin", "/dev/stdout",
                                                                 "/dev/stderr"};
    for (std::size_t number = 0; number < standardStreams.size(); ++number) {
        if (path == standardStreams[number]) {
            return static_cast<int>(number);
        }
    }
    for (const std::string_view folder : {"/dev/fd/", "/proc/self/fd/"}) {
        if (path.starts_with(folder)) {
            const char *end = path.data() + path.size();
            int number = -1;
            const auto [stop, failure] = std::from_chars(path.data() + folder.size(), end, number);
            if (failure == std::errc() && stop == end && number >= 0) {
                return number;
            }
        }
    }
    return std::nullopt;
}

std::unique_ptr<OutputFile> OutputFile::open(const std::string &path, std::error_code &error) {
    // Made first: where there is no memory, the file must not be truncated.
    std::unique_ptr<OutputFile> file(new OutputFile);
    // A descriptor is copied, not opened anew through its path: that would truncate a file that
    // the shell has opened for appending, and start at its beginning.
    const std::optional<int> named = descriptorNamedBy(path);
    file->descriptor_ = named ? ::fcntl(*named, F_DUPFD_CLOEXEC, 0) : openPath(path);
    if (file->descriptor_ < 0) {
        error = lastError();
        return nullptr;
    }
    error.clear();
    return file;
}

std::unique_ptr<OutputFile> OutputFile::onDescriptor(int descriptor, bool isOwned,
                                                     std::error_code &error) {
    const int flags = ::fcntl(descriptor, F_GETFL);
    if (flags < 0 || (flags & O_ACCMODE) == O_RDONLY) {
        error = flags < 0 ? lastError() : std::make_error_code(std::errc::bad_file_descriptor);
        return nullptr;
    }
    std::unique_ptr<OutputFile> file(new OutputFile);
    file->descriptor_ = descriptor;
    file->isOwned_ = isOwned;
    error.clear();
    return file;
}

std::unique_ptr<OutputFile> OutputFile::onBorrowedDescriptor(int descriptor,
                                                             std::error_code &error) {
    return onDescriptor(descriptor, false, error);
}

std::unique_ptr<OutputFile> OutputFile::onOwnedDescriptor(int descriptor, std::error_code &error) {
    return onDescriptor(descriptor, true, error);
}

std::unique_ptr<OutputFile> OutputFile::inMemory(std::string &text) {
    std::unique_ptr<OutputFile> file(new OutputFile);
    file->memory_ = &text;
    return file;
}

// The buffer is not value-initialised: a small file should not pay for touching all of it.
OutputFile::OutputFile() : buffer_(new char[bufferSize]) {}

OutputFile::~OutputFile() {
    close();
}

void OutputFile::writeThrough(std::string_view bytes) {
    while (!bytes.empty()) {
        if (used_ == bufferSize) {
            flush();
        }
        const std::string_view piece = bytes.substr(0, bufferSize - used_);
        std::memcpy(buffer_.get() + used_, piece.data(), piece.size());
        used_ += piece.size();
        bytes.remove_prefix(piece.size());
    }
}

char *OutputFile::reserve(std::size_t size) {
    assert(size <= largestReservation);
    if (bufferSize - used_ < size) {
        flush();
    }
    return buffer_.get() + used_;
}

void OutputFile::writeToDescriptor(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
        if (written > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (written == 0) { // never of a file; asking on might never end
            failure_ = std::make_error_code(std::errc::io_error);
            return;
        } else if (!isWorthAnotherTry(descriptor_)) {
            failure_ = lastError();
            return;
        }
    }
}

void OutputFile::writeToMemory(std::string_view bytes) {
    try {
        memory_->append(bytes);
    } catch (const std::exception &) { // no memory, or more than a string can hold
        failure_ = std::make_error_code(std::errc::not_enough_memory);
    }
}

std::error_code OutputFile::flush() {
    const std::string_view bytes(buffer_.get(), std::exchange(used_, 0));
    if (failure_) {
        return failure_;
    }
    if (memory_ != nullptr) {
        writeToMemory(bytes);
    } else if (descriptor_ >= 0) {
        writeToDescriptor(bytes);
    }
    return failure_;
}

std::error_code OutputFile::sync() {
    if (flush() || descriptor_ < 0) {
        return failure_;
    }
    int result = -1;
    do {
        result = ::fsync(descriptor_);
    } while (result != 0 && errno == EINTR);
    // What is no file on a disk says that it cannot be synchronised; there is nothing to lose then.
    if (result != 0 && errno != EINVAL && errno != ENOTSUP && errno != EROFS) {
        failure_ = lastError();
    }
    return failure_;
}

std::error_code OutputFile::close() {
    flush();
    memory_ = nullptr;
    const int descriptor = std::exchange(descriptor_, -1);
    // Linux closes the descriptor even when interrupted; a second try could close another's.
    if (descriptor >= 0 && isOwned_ && ::close(descriptor) != 0 && errno != EINTR && !failure_) {
        failure_ = lastError();
    }
    return failure_;
}

} // namespace pelluvia
