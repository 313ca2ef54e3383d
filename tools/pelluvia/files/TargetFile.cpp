// SPDX-License-Identifier: MIT

#include <tools/pelluvia/files/TargetFile.h>

#include <tools/pelluvia/files/Sync.h>

#include <Pelluvia/system/OutputFile.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace pelluvia::host {

namespace {

std::error_code lastError() {
    return {errno, std::generic_category()};
}

/// Where a symbolic link leads, or nothing when the path is not one.
std::string linkTarget(const std::string &path) {
    std::array<char, PATH_MAX> text{};
    const ssize_t size = ::readlink(path.c_str(), text.data(), text.size());
    if (size <= 0) {
        return {};
    }
    const std::string target(text.data(), static_cast<std::size_t>(size));
    const std::size_t slash = path.rfind('/');
    const bool isBesideLink = target.front() != '/' && slash != std::string::npos;
    return isBesideLink ? path.substr(0, slash + 1) + target : target;
}

/// The path itself behind any symbolic links, also where it does not exist yet.
std::string withoutLinks(std::string path) {
    constexpr int mostLinks = 40; // as the kernel
    for (int i = 0; i < mostLinks; ++i) {
        std::string target = linkTarget(path);
        if (target.empty()) {
            break;
        }
        path = std::move(target);
    }
    return path;
}

/// The path by which a place has one name only, as far as that can be told.
std::filesystem::path nameOfPlace(const std::string &path) {
    std::error_code error;
    const std::string itself = withoutLinks(path);
    const auto name = std::filesystem::weakly_canonical(itself, error);
    return error ? std::filesystem::path(itself) : name;
}

/// The name of the first, second ... partial result for a target. Of a name that is too long for
/// it, whole characters at the end make room.
std::string partialName(const std::string &path, int number) {
    constexpr std::size_t longestName = 255;
    const std::string suffix = number == 1 ? ".partial" : ".partial." + std::to_string(number);
    const std::size_t slash = path.rfind('/');
    const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
    std::size_t end = std::min(path.size(), start + longestName - suffix.size());
    const auto isInsideCharacter = [&path](std::size_t at) {
        return at < path.size() && (static_cast<unsigned char>(path[at]) & 0xC0U) == 0x80U;
    };
    while (end > start && isInsideCharacter(end)) {
        --end;
    }
    return path.substr(0, end) + suffix;
}

/// A file that has the name of a partial result from the start.
std::unique_ptr<TemporaryFile> makeLive(const std::string &path, const AccessRights *rights,
                                        std::error_code &error) {
    for (int number = 1;; ++number) {
        auto file = TemporaryFile::makeVisible(partialName(path, number), rights, error);
        if (file != nullptr || error != std::errc::file_exists) {
            return file;
        }
    }
}

std::optional<int> descriptorOf(const std::string &path) {
    return path == "-" ? STDOUT_FILENO : OutputFile::descriptorNamedBy(path);
}

} // namespace

bool TargetFile::isSamePlace(const std::string &first, const std::string &second) {
    const auto descriptor = descriptorOf(first);
    const auto otherDescriptor = descriptorOf(second);
    if (descriptor || otherDescriptor) {
        return descriptor == otherDescriptor;
    }
    return first == second || nameOfPlace(first) == nameOfPlace(second);
}

std::unique_ptr<TargetFile> TargetFile::open(const std::string &path, const Options &options,
                                             std::error_code &error) {
    error.clear();
    const auto target = [&options](std::string where, std::unique_ptr<TemporaryFile> file) {
        return std::unique_ptr<TargetFile>(
            new TargetFile(std::move(where), options, std::move(file)));
    };
    if (path == "-" || OutputFile::descriptorNamedBy(path)) {
        return target(path == "-" ? "/dev/stdout" : path, nullptr);
    }
    struct stat status = {};
    const bool exists = ::stat(path.c_str(), &status) == 0;
    if (!exists && (errno != ENOENT || path.empty())) {
        error = lastError();
        return nullptr;
    }
    if ((exists && S_ISDIR(status.st_mode)) || path.ends_with('/')) {
        error = std::make_error_code(std::errc::is_a_directory);
        return nullptr;
    }
    // A file that may not be written is not to be replaced either.
    if (exists && ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) {
        error = lastError();
        return nullptr;
    }
    if (exists && !S_ISREG(status.st_mode)) {
        return target(path, nullptr);
    }
    if (exists && !options.mayReplace) {
        error = std::make_error_code(std::errc::file_exists);
        return nullptr;
    }
    std::string itself = withoutLinks(path);
    const auto rights = exists ? std::optional<AccessRights>(std::in_place, itself, status)
                               : std::optional<AccessRights>();
    const AccessRights *model = rights ? &*rights : nullptr;
    auto file = options.isLive ? makeLive(itself, model, error)
                               : TemporaryFile::makeBeside(itself, model, error);
    return file == nullptr ? nullptr : target(std::move(itself), std::move(file));
}

TargetFile::TargetFile(std::string path, const Options &options,
                       std::unique_ptr<TemporaryFile> file)
    : path_(std::move(path)),
      options_(options),
      file_(std::move(file)),
      writePath_(file_ == nullptr ? path_ : "/dev/fd/" + std::to_string(file_->descriptor())) {}

TargetFile::~TargetFile() {
    giveUp();
}

std::error_code TargetFile::sync() const noexcept {
    const auto descriptor = OutputFile::descriptorNamedBy(writePath_);
    return descriptor ? syncFile(*descriptor) : std::error_code();
}

std::error_code TargetFile::keep() {
    std::error_code error = options_.isSynced ? sync() : std::error_code();
    if (error || file_ == nullptr) {
        return error;
    }
    error = file_->take(path_);
    if (!error) {
        return kept(path_, options_.isSynced);
    }
    if (error == std::errc::file_exists && !options_.mayReplace) {
        const std::error_code other = keepBeside();
        return other ? other : error;
    }
    if (error == std::errc::file_exists) {
        // Should the machine stop, there is the old file or the whole of the new one.
        error = sync();
        if (!error) {
            error = file_->replace(path_);
        }
    }
    return error ? error : kept(path_, true);
}

std::error_code TargetFile::keepPartial() {
    std::error_code error = options_.isSynced ? sync() : std::error_code();
    if (error || file_ == nullptr) {
        return error;
    }
    error = file_->take(path_);
    if (error == std::errc::file_exists) {
        return keepBeside();
    }
    return error ? error : kept(path_, options_.isSynced);
}

/// Keeps the result under the first of the names of partial results that nothing has.
std::error_code TargetFile::keepBeside() {
    if (options_.isLive) { // has it already
        const std::string name = file_->name();
        file_->stay();
        return kept(name, options_.isSynced);
    }
    for (int number = 1;; ++number) {
        const std::string name = partialName(path_, number);
        const std::error_code error = file_->take(name);
        if (error != std::errc::file_exists) {
            return error ? error : kept(name, options_.isSynced);
        }
    }
}

std::error_code TargetFile::kept(const std::string &name, bool isSynced) {
    keptName_ = name;
    return isSynced ? syncNameOf(name) : std::error_code();
}

void TargetFile::giveUp() {
    struct stat status = {};
    if (options_.isLive && file_ != nullptr && keptName_.empty() &&
        ::fstat(file_->descriptor(), &status) == 0 && status.st_size != 0) {
        keptName_ = file_->name();
        file_->stay();
    }
}

} // namespace pelluvia::host
