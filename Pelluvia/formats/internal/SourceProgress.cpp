// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/internal/SourceProgress.h>

#include <algorithm>

#include <sys/stat.h>
#include <unistd.h>

namespace pelluvia::formats {

SourceProgress::SourceProgress(int descriptor) noexcept {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        return;
    }
    const off_t ahead = status.st_size - ::lseek(descriptor, 0, SEEK_CUR);
    progress_.size = static_cast<std::uint64_t>(std::max<off_t>(ahead, 0));
}

void SourceProgress::add(std::size_t bytes) noexcept {
    progress_.position += bytes;
    // The file may have grown meanwhile.
    if (progress_.size) {
        progress_.size = std::max(*progress_.size, progress_.position);
    }
}

} // namespace pelluvia::formats
