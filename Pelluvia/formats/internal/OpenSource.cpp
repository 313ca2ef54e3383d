// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/internal/OpenSource.h>

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace pelluvia::formats {

OpenSource::OpenSource(const std::string &path, std::error_code &error) {
    error.clear();
    // The system would open what stands before it.
    if (path.find('\0') != std::string::npos) {
        error = std::make_error_code(std::errc::invalid_argument);
        return;
    }
    do {
        descriptor_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    } while (descriptor_ < 0 && errno == EINTR);
    if (descriptor_ < 0) {
        error = {errno, std::generic_category()};
    }
}

OpenSource::OpenSource(OpenSource &&other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)) {}

OpenSource::~OpenSource() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

} // namespace pelluvia::formats
