// SPDX-License-Identifier: MIT

#include <Pelluvia/storage/internal/DefaultsFile.h>

#include <Pelluvia/storage/internal/FileDescriptor.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
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

/// Writes a file that must not be there yet, to the disk. When that fails, there is none. Returns
/// an error number.
int writeNew(const std::string &path, std::string_view content) {
    const FileDescriptor descriptor(::open(
        path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, forTheUserAlone));
    if (!descriptor.isOpen()) {
        return errno;
    }
    int error = ::fchmod(descriptor.number(), forTheUserAlone) != 0 ? errno : 0;
    if (error == 0) {
        error = writeAll(descriptor.number(), content);
    }
    if (error == 0 && ::fsync(descriptor.number()) != 0) {
        error = errno;
    }
    if (error != 0) {
        ::unlink(path.c_str());
    }
    return error;
}

/// Where a chain of symbolic links ends, whether or not something is there. A chain without an end
/// is left somewhere: such a file cannot be opened, so nobody writes it.
std::filesystem::path endOfLinks(std::filesystem::path path) {
    constexpr int longestChain = 40;
    for (int links = 0; links < longestChain; ++links) {
        std::error_code error;
        const auto next = std::filesystem::read_symlink(path, error);
        if (error) {
            break;
        }
        path = path.parent_path() / next;
    }
    return path;
}

/// How lines that were not understood are called.
std::string linesOf(const DefaultsText &entries) {
    std::string text = "line " + std::to_string(entries.firstBadLine());
    if (entries.badLineCount() > 1) {
        text += " and " + std::to_string(entries.badLineCount() - 1) + " more";
    }
    return text + " cannot be understood";
}

} // namespace

DefaultsFile::DefaultsFile(std::string folder)
    : folder_(std::move(folder)), path_(folder_ + "/defaults.ini") {}

DefaultsFile::Look DefaultsFile::look() const {
    // Not to be held up by a pipe that somebody put there.
    const FileDescriptor descriptor(::open(path_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!descriptor.isOpen()) {
        const bool isAbsent = errno == ENOENT || errno == ENOTDIR;
        return {.error = isAbsent ? 0 : errno};
    }
    struct stat status {};
    if (::fstat(descriptor.number(), &status) != 0) {
        return {.error = errno};
    }
    if (!S_ISREG(status.st_mode)) {
        return {.isNoText = true};
    }
    Look found;
    found.error = readAll(descriptor.number(), found.content);
    found.isNoText = found.error == 0 && found.content.size() > UserDefaults::largestFile;
    if (found.error == 0 && !found.isNoText) {
        found.entries = DefaultsText::parsed(found.content);
    }
    return found;
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

std::string DefaultsFile::faultOf(const Look &found) const {
    if (found.error != 0) {
        return "Error reading the user defaults in " + path_ + ": " + reason(found.error);
    }
    if (!found.isDamaged()) {
        return {};
    }
    return "The user defaults in " + path_ + " are damaged: " +
           (found.isNoText ? "no file, or too large a file" : linesOf(found.entries));
}

std::string DefaultsFile::fault() const {
    const Look found = look();
    const std::string fault = faultOf(found);
    return found.error == 0 && found.isDamaged()
               ? fault + "; whoever uses them next mends them and keeps what is there in " +
                     freeName()
               : fault;
}

DefaultsText DefaultsFile::read(std::string &problem) const {
    Look found = look();
    if (found.error == 0 && found.isDamaged()) {
        FileLock held;
        int error = lock(held);
        if (error == 0) {
            // With the lock held nobody is replacing it, and perhaps somebody just has.
            found = look();
            error = found.isDamaged() ? rewrite(
                                            found, [](const DefaultsText & /*entries*/) {}, problem)
                                      : 0;
        } else {
            problem = faultOf(found);
        }
        if (error != 0) {
            problem += "; it cannot be mended: " + reason(error);
        }
    }
    if (found.error != 0) {
        problem = faultOf(found);
    }
    return std::move(found.entries);
}

int DefaultsFile::update(const std::function<void(DefaultsText &)> &change,
                         std::string &problem) const {
    FileLock held;
    int error = makeFolders(folder_);
    if (error == 0) {
        error = lock(held);
    }
    if (error == 0) {
        Look found = look();
        error = found.error != 0 ? found.error : rewrite(found, change, problem);
    }
    if (error != 0) {
        problem += (problem.empty() ? "" : "; ") + ("Error writing the user defaults in " + path_) +
                   ": " + reason(error);
    }
    return error;
}

int DefaultsFile::rewrite(Look &found, const std::function<void(DefaultsText &)> &change,
                          std::string &problem) const {
    if (found.isDamaged()) {
        problem = faultOf(found);
        // Nobody takes the name in between, since we hold the lock.
        const std::string name = freeName();
        if (const int error = keepAside(found, name)) {
            return error;
        }
        problem += "; what was there is kept in " + name;
    }
    change(found.entries);
    return replace(found.entries.text());
}

std::string DefaultsFile::freeName() const {
    std::string name = folder_ + "/defaults.damaged";
    struct stat status {};
    for (int number = 2; ::lstat(name.c_str(), &status) == 0; ++number) {
        name = folder_ + "/defaults.damaged." + std::to_string(number);
    }
    return name;
}

int DefaultsFile::keepAside(const Look &found, const std::string &name) const {
    if (!found.isNoText) {
        return writeNew(name, found.content);
    }
    return ::rename(path_.c_str(), name.c_str()) != 0 ? errno : 0;
}

int DefaultsFile::replace(const std::string &content) const {
    if (content.size() > UserDefaults::largestFile) {
        return EFBIG;
    }
    const std::filesystem::path target = endOfLinks(path_);
    std::string name(".");
    name.append(target.filename().native()).append(".pelluvia-new");
    const std::string temporary = target.parent_path() / name;
    // Left over from a process that was killed: nobody else is here, since we hold the lock.
    ::unlink(temporary.c_str());
    int error = writeNew(temporary, content);
    if (error == 0 && ::rename(temporary.c_str(), target.c_str()) != 0) {
        error = errno;
        ::unlink(temporary.c_str());
    }
    if (error == 0) {
        syncFolder(target.parent_path());
    }
    return error;
}

} // namespace pelluvia::storage
