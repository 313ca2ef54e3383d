// SPDX-License-Identifier: MIT

#include <tools/pelluvia/files/UnnamedFile.h>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>

namespace pelluvia::host {

std::string temporaryFolder() {
    const char *chosen = std::getenv("TMPDIR"); // NOLINT(concurrency-mt-unsafe): one thread
    return chosen != nullptr && *chosen != '\0' ? chosen : "/tmp";
}

Descriptor openUnnamedFile(const std::string &folder, std::error_code &error) {
    constexpr mode_t ownerOnly = 0600;
    Descriptor file(::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, ownerOnly));
    if (!file.isOpen() && errno != ENOENT && errno != EACCES) {
        // Not every file system has unnamed files; take the name away at once.
        std::string path = folder + "/pelluvia-XXXXXX";
        file = Descriptor(::mkostemp(path.data(), O_CLOEXEC));
        if (file.isOpen()) {
            ::unlink(path.c_str());
        }
    }
    error = file.isOpen() ? std::error_code() : std::error_code(errno, std::generic_category());
    return file;
}

} // namespace pelluvia::host
