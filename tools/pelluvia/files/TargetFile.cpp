#include <tools/pelluvia/files/TargetFile.h>

#include <Pelluvia/system/OutputFile.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <filesystem>
#include <optional>
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

std::unique_ptr<TargetFile> TargetFile::open(const std::string &path, std::error_code &error) {
    error.clear();
    const auto written = [](std::string where) {
        return std::unique_ptr<TargetFile>(new TargetFile(std::move(where), false, nullptr));
    };
    if (path == "-" || OutputFile::descriptorNamedBy(path)) {
        return written(path == "-" ? "/dev/stdout" : path);
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
        return written(path);
    }
    std::string itself = withoutLinks(path);
    auto file = TemporaryFile::makeBeside(itself, exists ? &status : nullptr, error);
    return file == nullptr ? nullptr
                           : std::unique_ptr<TargetFile>(
                                 new TargetFile(std::move(itself), exists, std::move(file)));
}

TargetFile::TargetFile(std::string path, bool isReplacing, std::unique_ptr<TemporaryFile> file)
    : path_(std::move(path)), isReplacing_(isReplacing), file_(std::move(file)) {}

const std::string &TargetFile::writePath() const noexcept {
    return file_ != nullptr ? file_->path() : path_;
}

std::error_code TargetFile::keep() {
    return keepAs(path_);
}

std::error_code TargetFile::keepPartial(std::span<const std::string> mustStay) {
    struct stat status = {};
    std::string name = path_;
    if (::lstat(path_.c_str(), &status) == 0) {
        const auto isThere = [&name](const std::string &path) { return isSamePlace(path, name); };
        do {
            name += ".partial";
        } while (std::any_of(mustStay.begin(), mustStay.end(), isThere));
    }
    return keepAs(name);
}

std::error_code TargetFile::keepAs(const std::string &name) {
    if (file_ == nullptr) {
        return {};
    }
    // Where nothing is replaced, nothing is lost if the machine stops before the disk has it all.
    if (const std::error_code error = isReplacing_ ? file_->sync() : std::error_code()) {
        return error;
    }
    const std::error_code error = file_->rename(name);
    if (!error) {
        keptName_ = name;
    }
    return error;
}

} // namespace pelluvia::host
