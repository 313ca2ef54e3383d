// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/EntityFolder.h>

#include <Pelluvia/xml/internal/Failure.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <unistd.h>
#include <utility>

namespace pelluvia::xml {

namespace {

EntityFile refusal(std::string reason) {
    return {-1, {}, std::move(reason)};
}

/// The path with all symbolic links and dots resolved; empty, with `errno` set, when it fails.
std::string canonical(const std::string &path) {
    struct Free {
        void operator()(char *memory) const noexcept { std::free(memory); }
    };
    const std::unique_ptr<char, Free> resolved(::realpath(path.c_str(), nullptr));
    return resolved ? std::string(resolved.get()) : std::string();
}

bool isInside(std::string_view path, std::string_view folder) {
    return path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '/';
}

/// Whether a folder holds no files but names of devices and descriptors. (Below /dev there may be
/// ordinary folders, such as /dev/shm.)
bool isSystemFolder(const std::string &path) {
    return path == "/dev" || path == "/proc" || isInside(path, "/proc") || path == "/sys" ||
           isInside(path, "/sys");
}

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// The scheme of a URI reference, or nothing.
std::string_view schemeOf(std::string_view reference) {
    const std::size_t colon = reference.find(':');
    if (colon == std::string_view::npos || colon == 0 || !isLetter(reference.front())) {
        return {};
    }
    for (const char c : reference.substr(0, colon)) {
        if (!isLetter(c) && !(c >= '0' && c <= '9') && c != '+' && c != '-' && c != '.') {
            return {};
        }
    }
    return reference.substr(0, colon);
}

/// Undoes percent encoding. Nothing when it is wrong or hides a byte that no path can have.
std::optional<std::string> decoded(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        if (text.front() != '%') {
            result += text.front();
            text.remove_prefix(1);
            continue;
        }
        unsigned byte = 0;
        if (text.size() < 3 ||
            std::from_chars(&text[1], &text[1] + 2, byte, 16).ptr != &text[1] + 2 || byte == 0) {
            return std::nullopt;
        }
        result += static_cast<char>(static_cast<unsigned char>(byte));
        text.remove_prefix(3);
    }
    return result;
}

/// The path that a system identifier names, relative or absolute; empty, with the reason, when it
/// names no file.
std::string pathOf(std::string_view systemIdentifier, std::string &reason) {
    std::string_view path = systemIdentifier;
    const std::string_view scheme = schemeOf(path);
    if (!scheme.empty()) {
        if (scheme != "file" && scheme != "FILE") {
            reason = "only files are read";
            return {};
        }
        path.remove_prefix(scheme.size() + 1);
    }
    if (path.starts_with("//")) {
        const bool local =
            !scheme.empty() && (path.starts_with("///") || path.starts_with("//localhost/"));
        if (!local) {
            reason = "only files of this computer are read";
            return {};
        }
        path.remove_prefix(path.find('/', 2));
    }
    auto result = decoded(path);
    if (!result || result->empty()) {
        reason = "not the name of a file";
        return {};
    }
    return *std::move(result);
}

/// Opens a path below a folder one name at a time, following no link: between the check of the path
/// and its use, somebody may have put one in its place.
int openBelow(int folder, std::string_view path) {
    int current = ::fcntl(folder, F_DUPFD_CLOEXEC, 0);
    while (current >= 0) {
        const std::size_t slash = path.find('/');
        const bool last = slash == std::string_view::npos;
        const std::string name(path.substr(0, slash));
        constexpr int always = O_RDONLY | O_NOFOLLOW | O_CLOEXEC;
        // Not blocking: opening a pipe would wait for somebody to write.
        const int next = ::openat(current, name.c_str(),
                                  last ? always | O_NONBLOCK | O_NOCTTY : always | O_DIRECTORY);
        const int reason = errno;
        ::close(current);
        errno = reason;
        if (last) {
            return next;
        }
        current = next;
        path.remove_prefix(slash + 1);
    }
    return current;
}

bool isRegularFile(int descriptor) {
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

} // namespace

std::string folderOf(const std::string &path) {
    const std::size_t slash = path.rfind('/');
    return slash != std::string::npos ? path.substr(0, slash) : std::string();
}

std::optional<EntityFolder> EntityFolder::holding(const std::string &path, int descriptor) {
    struct stat opened {};
    struct stat named {};
    const std::size_t slash = path.rfind('/');
    const std::string given = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    const std::string document = canonical(path);
    const std::string way = canonical(given);
    if (document.empty() || way.empty() || isSystemFolder(way) ||
        isSystemFolder(folderOf(document)) || ::fstat(descriptor, &opened) != 0 ||
        !S_ISREG(opened.st_mode)) {
        return std::nullopt;
    }
    // The working directory may have changed, or the file been replaced, since it was opened.
    if (::stat(document.c_str(), &named) != 0 || named.st_dev != opened.st_dev ||
        named.st_ino != opened.st_ino) {
        return std::nullopt;
    }
    std::string folder = folderOf(document);
    const int folderDescriptor =
        ::open(folder.empty() ? "/" : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folderDescriptor < 0) {
        return std::nullopt;
    }
    return EntityFolder(std::move(folder), folderDescriptor);
}

EntityFolder::EntityFolder(std::string path, int descriptor) noexcept
    : path_(std::move(path)), descriptor_(descriptor) {}

EntityFolder::EntityFolder(EntityFolder &&other) noexcept
    : path_(std::move(other.path_)), descriptor_(std::exchange(other.descriptor_, -1)) {}

EntityFolder &EntityFolder::operator=(EntityFolder &&other) noexcept {
    std::swap(path_, other.path_);
    std::swap(descriptor_, other.descriptor_);
    return *this;
}

EntityFolder::~EntityFolder() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

EntityFile EntityFolder::open(std::string_view systemIdentifier, const std::string &base) const {
    std::string reason;
    const std::string named = pathOf(systemIdentifier, reason);
    if (named.empty()) {
        return refusal(std::move(reason));
    }
    const std::string path = canonical(named.front() == '/' ? named : base + "/" + named);
    if (path.empty()) {
        return refusal(systemReason(errno));
    }
    if (!isInside(path, path_)) {
        return refusal("outside the folder of the document");
    }
    const int descriptor = openBelow(descriptor_, std::string_view(path).substr(path_.size() + 1));
    if (descriptor < 0) {
        return refusal(systemReason(errno));
    }
    if (!isRegularFile(descriptor)) {
        ::close(descriptor);
        return refusal("not a regular file");
    }
    return {descriptor, path, {}};
}

} // namespace pelluvia::xml
