#include <Pelluvia/platform/OutputFile.h>

#include <cassert>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace pelluvia {

namespace {

// Large enough that the cost of a system call a block no longer shows.
constexpr std::size_t bufferSize = 256 * 1024;
static_assert(OutputFile::largestReservation < bufferSize);

std::error_code lastError() {
    return {errno, std::generic_category()};
}

} // namespace

std::unique_ptr<OutputFile> OutputFile::open(const std::string &path, std::error_code &error) {
    constexpr mode_t mode = 0666;
    if (path.find('\0') != std::string::npos) { // the system would see another, shorter path
        error = std::make_error_code(std::errc::invalid_argument);
        return nullptr;
    }
    // Made first: where there is no memory, the file must not be truncated.
    std::unique_ptr<OutputFile> file(new OutputFile);
    do {
        file->descriptor_ = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode);
    } while (file->descriptor_ < 0 && errno == EINTR);
    if (file->descriptor_ < 0) {
        error = lastError();
        return nullptr;
    }
    error.clear();
    return file;
}

// The buffer is not value-initialised: a small file should not pay for touching all of it.
OutputFile::OutputFile() : buffer_(new char[bufferSize]) {}

OutputFile::~OutputFile() {
    close();
}

void OutputFile::write(std::string_view bytes) {
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

void OutputFile::flush() {
    const char *position = buffer_.get();
    std::size_t left = failure_ || descriptor_ < 0 ? 0 : used_;
    while (left != 0) {
        const ssize_t written = ::write(descriptor_, position, left);
        if (written > 0) {
            position += written;
            left -= static_cast<std::size_t>(written);
        } else if (written == 0) { // never of a file; asking on might never end
            failure_ = std::make_error_code(std::errc::io_error);
            break;
        } else if (errno != EINTR) {
            failure_ = lastError();
            break;
        }
    }
    used_ = 0;
}

std::error_code OutputFile::close() {
    if (descriptor_ >= 0) {
        flush();
        // Linux closes the descriptor even when interrupted; a second try could close another's.
        if (::close(descriptor_) != 0 && errno != EINTR && !failure_) {
            failure_ = lastError();
        }
        descriptor_ = -1;
    }
    return failure_;
}

} // namespace pelluvia
