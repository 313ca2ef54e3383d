#include <Pelluvia/platform/xml/Source.h>

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
    return ::fstat(descriptor_, &status) == 0 && S_ISDIR(status.st_mode) ? EISDIR : 0;
}

ssize_t FileSource::read(char *to, std::size_t size) {
    ssize_t count = 0;
    do {
        count = ::read(descriptor_, to, size);
    } while (count < 0 && errno == EINTR);
    return count >= 0 ? count : -errno;
}

} // namespace pelluvia::xml
