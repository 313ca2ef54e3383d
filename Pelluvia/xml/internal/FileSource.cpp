// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/FileSource.h>

#include <Pelluvia/xml/internal/Failure.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pelluvia::xml {

FileSource::FileSource(int descriptor, Ownership ownership)
    : descriptor_(descriptor), ownership_(ownership) {
    inspect();
}

FileSource::~FileSource() {
    if (descriptor_ >= 0 && ownership_ == Ownership::owned) {
        ::close(descriptor_);
    }
}

std::string FileSource::open() {
    if (descriptor_ >= 0 || !failure_.empty()) {
        return failure_;
    }
    if (path_.find('\0') != std::string::npos) {
        return failure_ = "There is a zero byte in its path"; // the system would cut it off there
    }
    do {
        descriptor_ = ::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    } while (descriptor_ < 0 && errno == EINTR);
    if (descriptor_ < 0) {
        return failure_ = systemReason(errno);
    }
    inspect();
    return failure_;
}

void FileSource::inspect() {
    struct stat status {};
    if (::fstat(descriptor_, &status) != 0) {
        failure_ = systemReason(errno);
    } else if (S_ISDIR(status.st_mode)) {
        failure_ = systemReason(EISDIR); // opens but cannot be read
    } else if (S_ISREG(status.st_mode)) {
        begin_ = std::max<off_t>(::lseek(descriptor_, 0, SEEK_CUR), 0);
        position_ = begin_;
        size_ = status.st_size;
    }
}

ssize_t FileSource::readSome(char *to, std::size_t size) {
    ssize_t count = 0;
    do {
        count =
            position_ ? ::pread(descriptor_, to, size, *position_) : ::read(descriptor_, to, size);
    } while (count < 0 && errno == EINTR);
    if (position_ && count > 0) {
        *position_ += count;
    }
    return count >= 0 ? count : -errno;
}

std::unique_ptr<Source> FileSource::again() const {
    if (!position_) {
        return nullptr;
    }
    const int descriptor = ::fcntl(descriptor_, F_DUPFD_CLOEXEC, 0);
    if (descriptor < 0) {
        return nullptr;
    }
    auto source = std::make_unique<FileSource>(descriptor, Ownership::owned);
    source->path_ = path_;
    source->begin_ = begin_; // wherever the descriptor stands by now
    source->position_ = begin_;
    return source;
}

std::optional<std::uint64_t> FileSource::size() const {
    if (!position_) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(std::max<off_t>(size_ - begin_, 0));
}

std::optional<SourceState> FileSource::state() const {
    struct stat status {};
    if (!position_ || ::fstat(descriptor_, &status) != 0) {
        return std::nullopt;
    }
    return SourceState{.device = status.st_dev,
                       .inode = status.st_ino,
                       .begin = begin_,
                       .size = status.st_size,
                       .modifiedSeconds = status.st_mtim.tv_sec,
                       .modifiedFraction = status.st_mtim.tv_nsec};
}

} // namespace pelluvia::xml
