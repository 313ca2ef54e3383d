#include <Pelluvia/xml/internal/Source.h>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pelluvia::xml {

FileSource::~FileSource() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

int FileSource::open() {
    if (descriptor_ >= 0) {
        return 0;
    }
    do {
        descriptor_ = ::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    } while (descriptor_ < 0 && errno == EINTR);
    if (descriptor_ < 0) {
        return errno;
    }
    // A directory opens but cannot be read; say so at once.
    struct stat status {};
    if (::fstat(descriptor_, &status) != 0) {
        return 0;
    }
    if (S_ISREG(status.st_mode)) {
        position_ = 0;
    }
    return S_ISDIR(status.st_mode) ? EISDIR : 0;
}

ssize_t FileSource::read(char *to, std::size_t size) {
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
    auto source = std::make_unique<FileSource>(descriptor);
    source->path_ = path_;
    source->position_ = 0;
    return source;
}

std::optional<FileState> FileSource::state() const {
    struct stat status {};
    if (!position_ || ::fstat(descriptor_, &status) != 0) {
        return std::nullopt;
    }
    return FileState{.device = status.st_dev,
                     .inode = status.st_ino,
                     .size = status.st_size,
                     .modifiedSeconds = status.st_mtim.tv_sec,
                     .modifiedFraction = status.st_mtim.tv_nsec};
}

} // namespace pelluvia::xml
