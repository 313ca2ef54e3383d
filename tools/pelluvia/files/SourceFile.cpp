// SPDX-License-Identifier: MIT

#include <tools/pelluvia/files/SourceFile.h>

#include <tools/pelluvia/files/UnnamedFile.h>

#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>

namespace pelluvia::host {

namespace {

constexpr std::size_t chunkSize = std::size_t{256} * 1024;

std::error_code lastError() {
    return {errno, std::generic_category()};
}

ssize_t readSome(int descriptor, char *buffer) {
    ssize_t got = 0;
    do {
        got = ::read(descriptor, buffer, chunkSize);
    } while (got < 0 && errno == EINTR);
    return got;
}

std::error_code writeAll(int descriptor, const char *bytes, std::size_t size) {
    while (size != 0) {
        const ssize_t written = ::write(descriptor, bytes, size);
        if (written >= 0) {
            bytes += written;
            size -= static_cast<std::size_t>(written);
        } else if (errno != EINTR) {
            return lastError();
        }
    }
    return {};
}

} // namespace

bool isRegularFile(const std::string &path) {
    struct stat status = {};
    return path != "-" && ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

std::error_code whyUnreadable(const std::string &path) {
    struct stat status = {};
    const int result = path == "-" ? ::fstat(STDIN_FILENO, &status) : ::stat(path.c_str(), &status);
    if (result != 0) {
        return lastError();
    }
    if (S_ISDIR(status.st_mode)) {
        return std::make_error_code(std::errc::is_a_directory);
    }
    if (path == "-" && (::fcntl(STDIN_FILENO, F_GETFL) & O_ACCMODE) == O_WRONLY) {
        return std::make_error_code(std::errc::bad_file_descriptor);
    }
    if (path != "-" && ::faccessat(AT_FDCWD, path.c_str(), R_OK, AT_EACCESS) != 0) {
        return lastError();
    }
    return {};
}

Descriptor openSource(const std::string &path, std::error_code &error) {
    int number = -1;
    do {
        number = path == "-" ? ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                             : ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    } while (number < 0 && errno == EINTR);
    error = number >= 0 ? std::error_code() : lastError();
    return Descriptor(number);
}

RereadableSource::Failure RereadableSource::prepare() {
    if (isRegularFile(path_)) {
        return {};
    }
    std::error_code error;
    const Descriptor source = openSource(path_, error);
    if (error) {
        return {.reading = error, .writing = {}, .folder = {}};
    }
    return copy(source.number());
}

RereadableSource::Failure RereadableSource::copy(int source) {
    const std::string folder = temporaryFolder();
    Failure failure{.reading = {}, .writing = {}, .folder = folder};
    copy_ = openUnnamedFile(folder, failure.writing);
    if (failure) {
        return failure;
    }
    const auto buffer = std::make_unique<char[]>(chunkSize);
    while (const ssize_t got = readSome(source, buffer.get())) {
        if (got < 0) {
            failure.reading = lastError();
            return failure;
        }
        failure.writing = writeAll(copy_.number(), buffer.get(), static_cast<std::size_t>(got));
        if (failure) {
            return failure;
        }
    }
    path_ = "/dev/fd/" + std::to_string(copy_.number());
    return failure;
}

} // namespace pelluvia::host
