#include <Pelluvia/storage/internal/DefaultsFile.h>

#include <Pelluvia/storage/internal/FileDescriptor.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <utility>

namespace pelluvia::storage {

namespace {

constexpr mode_t forTheUserAlone = 0600;
constexpr mode_t folderForTheUserAlone = 0700;

std::string reason(int error) {
    return std::generic_category().message(error);
}

/// Everything from here to the end, which is at most `largestFile` bytes away and one more.
int readAll(int descriptor, std::string &content) {
    std::array<char, 64 * 1024> buffer{};
    while (content.size() <= UserDefaults::largestFile) {
        const ssize_t got = ::read(descriptor, buffer.data(), buffer.size());
        if (got == 0) {
            return 0;
        }
        if (got > 0) {
            content.append(buffer.data(), static_cast<std::size_t>(got));
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

int writeAll(int descriptor, std::string_view content) {
    while (!content.empty()) {
        const ssize_t written = ::write(descriptor, content.data(), content.size());
        if (written >= 0) {
            content.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

/// Makes the folder and those above it that are missing. Returns an error number.
int makeFolders(const std::string &folder) {
    std::size_t end = 0;
    while (end != std::string::npos) {
        end = folder.find('/', end + 1);
        const std::string each = folder.substr(0, end);
        if (::mkdir(each.c_str(), folderForTheUserAlone) == 0) {
            // An umask may have taken from it what we need.
            static_cast<void>(::chmod(each.c_str(), folderForTheUserAlone));
        } else if (errno != EEXIST) {
            return errno;
        }
    }
    return 0;
}

/// Has the folder remember a renaming. Some file systems cannot be asked; they do it anyway.
void syncFolder(const std::string &folder) {
    const FileDescriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.isOpen()) {
        ::fsync(descriptor.number());
    }
}

/// Writes a new file, to the disk. Returns an error number.
int writeNew(const std::string &path, std::string_view content) {
    // Left over from a process that was killed: nobody else is here, since we hold the lock.
    ::unlink(path.c_str());
    const FileDescriptor descriptor(::open(
        path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, forTheUserAlone));
    if (!descriptor.isOpen() || ::fchmod(descriptor.number(), forTheUserAlone) != 0) {
        return errno;
    }
    if (const int error = writeAll(descriptor.number(), content)) {
        return error;
    }
    return ::fsync(descriptor.number()) != 0 ? errno : 0;
}

} // namespace

DefaultsFile::DefaultsFile(std::string folder)
    : folder_(std::move(folder)), path_(folder_ + "/defaults.ini") {}

DefaultsFile::Look DefaultsFile::look() const {
    // Not to be held up by a pipe that somebody put there.
    const FileDescriptor descriptor(::open(path_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!descriptor.isOpen()) {
        const bool isAbsent = errno == ENOENT || errno == ENOTDIR;
        return isAbsent ? Look{DefaultsText(), 0} : Look{std::nullopt, errno};
    }
    struct stat status {};
    if (::fstat(descriptor.number(), &status) != 0) {
        return {std::nullopt, errno};
    }
    if (!S_ISREG(status.st_mode)) {
        return {std::nullopt, 0};
    }
    std::string content;
    if (const int error = readAll(descriptor.number(), content)) {
        return {std::nullopt, error};
    }
    if (content.size() > UserDefaults::largestFile) {
        return {std::nullopt, 0};
    }
    return {DefaultsText::parsed(content), 0};
}

int DefaultsFile::lock(FileLock &held) const {
    // A file of its own, since the other one is replaced again and again.
    FileDescriptor file(::open((folder_ + "/defaults.lock").c_str(),
                               O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC,
                               forTheUserAlone));
    if (!file.isOpen()) {
        return errno;
    }
    // An umask may have taken from a new one what the next writer needs. One of somebody else's
    // stays as it is.
    static_cast<void>(::fchmod(file.number(), forTheUserAlone));
    return held.take(std::move(file));
}

std::optional<DefaultsText> DefaultsFile::moveAside(std::string &problem) const {
    const std::string aside = folder_ + "/defaults.damaged";
    problem = "The user defaults in " + path_ + " are damaged";
    if (::rename(path_.c_str(), aside.c_str()) != 0) {
        problem += " and cannot be moved aside: " + reason(errno);
        return std::nullopt;
    }
    problem += "; moved to " + aside;
    return DefaultsText();
}

DefaultsText DefaultsFile::read(std::string &problem) const {
    Look found = look();
    if (found.entries) {
        return std::move(*found.entries);
    }
    FileLock held;
    int error = found.error;
    if (error == 0 && (error = lock(held)) == 0) {
        // With the lock held nobody is replacing it, and perhaps somebody just has.
        found = look();
        if (!found.entries && found.error == 0) {
            found.entries = moveAside(problem);
        }
        error = found.error;
    }
    if (error != 0) {
        problem = "Error reading the user defaults in " + path_ + ": " + reason(error);
    }
    return found.entries ? std::move(*found.entries) : DefaultsText();
}

void DefaultsFile::update(const std::function<void(DefaultsText &)> &change,
                          std::string &problem) const {
    FileLock held;
    int error = makeFolders(folder_);
    if (error == 0) {
        error = lock(held);
    }
    Look found;
    if (error == 0) {
        found = look();
        error = found.error;
    }
    if (error == 0 && !found.entries) {
        found.entries = moveAside(problem);
        if (!found.entries) {
            return;
        }
    }
    if (error == 0) {
        change(*found.entries);
        error = replace(found.entries->text());
    }
    if (error != 0) {
        problem += (problem.empty() ? "" : "; ") + ("Error writing the user defaults in " + path_) +
                   ": " + reason(error);
    }
}

int DefaultsFile::replace(const std::string &content) const {
    if (content.size() > UserDefaults::largestFile) {
        return EFBIG;
    }
    const std::string temporary = folder_ + "/defaults.new";
    int error = writeNew(temporary, content);
    if (error == 0 && ::rename(temporary.c_str(), path_.c_str()) != 0) {
        error = errno;
    }
    if (error != 0) {
        ::unlink(temporary.c_str());
        return error;
    }
    syncFolder(folder_);
    return 0;
}

} // namespace pelluvia::storage
