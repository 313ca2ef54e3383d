// SPDX-License-Identifier: MIT

#include <tools/pelluvia/files/Sync.h>

#include <tools/pelluvia/files/Descriptor.h>

#include <cerrno>
#include <fcntl.h>

namespace pelluvia::host {

std::error_code syncFile(int descriptor) noexcept {
    int result = 0;
    do {
        result = ::fsync(descriptor);
    } while (result != 0 && errno == EINTR);
    const bool cannotBeSynced = errno == EINVAL || errno == ENOSYS || errno == EROFS;
    return result == 0 || cannotBeSynced ? std::error_code()
                                         : std::error_code(errno, std::generic_category());
}

std::error_code syncNameOf(const std::string &path) {
    const std::string folder = folderOf(path);
    int number = -1;
    do {
        number = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    } while (number < 0 && errno == EINTR);
    const Descriptor descriptor(number);
    if (descriptor.isOpen()) {
        return syncFile(number);
    }
    // One may write to a folder that one may not read.
    return errno == EACCES ? std::error_code() : std::error_code(errno, std::generic_category());
}

std::string folderOf(const std::string &path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

} // namespace pelluvia::host
