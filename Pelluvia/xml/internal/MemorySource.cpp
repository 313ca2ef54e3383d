// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/MemorySource.h>

#include <algorithm>
#include <cstring>

namespace pelluvia::xml {

std::unique_ptr<Source> MemorySource::again() const {
    return std::make_unique<MemorySource>(bytes_);
}

std::optional<SourceState> MemorySource::state() const {
    return SourceState{.inode = reinterpret_cast<std::uintptr_t>(bytes_.data()),
                       .size = static_cast<std::int64_t>(bytes_.size())};
}

ssize_t MemorySource::readSome(char *to, std::size_t size) {
    const std::string_view rest = bytes_.substr(bytesRead());
    const std::size_t count = std::min(size, rest.size());
    if (count != 0) { // an empty document may have no address
        std::memcpy(to, rest.data(), count);
    }
    return static_cast<ssize_t>(count);
}

} // namespace pelluvia::xml
