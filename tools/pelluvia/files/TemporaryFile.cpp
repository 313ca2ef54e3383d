// SPDX-License-Identifier: MIT

#include <tools/pelluvia/files/TemporaryFile.h>

#include <tools/pelluvia/files/Sync.h>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <random>
#include <string_view>
#include <sys/stat.h>

namespace pelluvia::host {

namespace {

constexpr int tries = 100; ///< of names that others may have

std::error_code lastError() {
    return {errno, std::generic_category()};
}

/// A name that nobody else is likely to have, beside the path.
std::string nameBeside(const std::string &path) {
    constexpr std::string_view characters = "0123456789abcdefghijklmnopqrstuvwxyz";
    constexpr std::size_t longestPart = 200; // of the name; a file name has at most 255 bytes
    const std::size_t slash = path.rfind('/');
    const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
    std::string name = path.substr(0, start) + '.' + path.substr(start, longestPart) + '.';
    std::random_device random;
    for (int i = 0; i < 6; ++i) {
        name += characters[random() % characters.size()];
    }
    return name;
}

/// The path by which the system gives a file of ours a name, or another one.
std::string ownPath(int descriptor) {
    return "/proc/self/fd/" + std::to_string(descriptor);
}

/// Whether a file without a name could be given one in the end.
bool canBeNamed(int descriptor) {
    struct stat file = {};
    struct stat found = {};
    return ::fstat(descriptor, &file) == 0 && ::stat(ownPath(descriptor).c_str(), &found) == 0 &&
           file.st_dev == found.st_dev && file.st_ino == found.st_ino;
}

/// Opens a new file; an interruption is not a failure.
Descriptor openNew(const std::string &path, int how, mode_t mode) {
    int number = -1;
    do {
        number = ::open(path.c_str(), O_WRONLY | O_CLOEXEC | how, mode);
    } while (number < 0 && errno == EINTR);
    return Descriptor(number);
}

Descriptor openNew(const std::string &path, int how, const AccessRights *rights) {
    constexpr mode_t newFile = 0666; // less the umask
    Descriptor file = openNew(path, how, rights == nullptr ? newFile : rights->initialMode());
    if (file.isOpen() && rights != nullptr) {
        rights->giveTo(file.number());
    }
    return file;
}

} // namespace

std::unique_ptr<TemporaryFile> TemporaryFile::makeBeside(const std::string &path,
                                                         const AccessRights *rights,
                                                         std::error_code &error) {
    Descriptor file = openNew(folderOf(path), O_TMPFILE, rights);
    if (!file.isOpen() || !canBeNamed(file.number())) {
        return makeHidden(path, rights, error);
    }
    error.clear();
    return std::unique_ptr<TemporaryFile>(new TemporaryFile({}, std::move(file)));
}

std::unique_ptr<TemporaryFile> TemporaryFile::makeHidden(const std::string &path,
                                                         const AccessRights *rights,
                                                         std::error_code &error) {
    const EndingSignalsBlocked blocked;
    for (int i = 0; i < tries; ++i) {
        const std::string name = nameBeside(path);
        if (!RemovalOnSignal::hasRoomFor(name)) {
            error = std::make_error_code(std::errc::too_many_files_open);
            return nullptr;
        }
        auto file = makeVisible(name, rights, error);
        if (file != nullptr) {
            file->removal_.emplace(name);
            return file;
        }
        if (error != std::errc::file_exists) {
            break;
        }
    }
    return nullptr;
}

std::unique_ptr<TemporaryFile> TemporaryFile::makeVisible(const std::string &name,
                                                          const AccessRights *rights,
                                                          std::error_code &error) {
    Descriptor file = openNew(name, O_CREAT | O_EXCL, rights);
    if (!file.isOpen()) {
        error = lastError();
        return nullptr;
    }
    error.clear();
    return std::unique_ptr<TemporaryFile>(new TemporaryFile(name, std::move(file)));
}

TemporaryFile::TemporaryFile(std::string name, Descriptor descriptor) noexcept
    : name_(std::move(name)), descriptor_(std::move(descriptor)) {}

TemporaryFile::~TemporaryFile() {
    if (!name_.empty()) {
        ::unlink(name_.c_str());
    }
}

std::error_code TemporaryFile::linkAs(const std::string &name) const {
    const int result = ::linkat(AT_FDCWD, ownPath(descriptor_.number()).c_str(), AT_FDCWD,
                                name.c_str(), AT_SYMLINK_FOLLOW);
    return result == 0 ? std::error_code() : lastError();
}

std::error_code TemporaryFile::take(const std::string &name) {
    const EndingSignalsBlocked blocked;
    if (name_.empty()) {
        return linkAs(name);
    }
    // Not every file system can rename without replacing: an empty file keeps the name free for us.
    const Descriptor placeholder = openNew(name, O_CREAT | O_EXCL, S_IRUSR | S_IWUSR);
    if (!placeholder.isOpen()) {
        return lastError();
    }
    const std::error_code error = replace(name);
    if (error) {
        ::unlink(name.c_str());
    }
    return error;
}

std::error_code TemporaryFile::replace(const std::string &name) {
    const EndingSignalsBlocked blocked;
    std::string from = name_;
    for (int i = 0; from.empty(); ++i) {
        // What has no name cannot take that of another in one step.
        std::string hidden = nameBeside(name);
        const std::error_code error = linkAs(hidden);
        if (!error) {
            from = std::move(hidden);
        } else if (error != std::errc::file_exists || i == tries) {
            return error;
        }
    }
    if (std::rename(from.c_str(), name.c_str()) != 0) {
        const std::error_code error = lastError();
        if (name_.empty()) {
            ::unlink(from.c_str());
        }
        return error;
    }
    stay();
    return {};
}

void TemporaryFile::stay() noexcept {
    name_.clear();
    removal_.reset();
}

} // namespace pelluvia::host
