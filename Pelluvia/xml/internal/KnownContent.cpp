// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/KnownContent.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace pelluvia::xml {

namespace {

/// Whether a source begins with the bytes that the digest is of.
bool beginsWith(const Source &source, const ContentDigest &digest) {
    constexpr std::size_t blockSize = 64 * 1024;
    const auto bytes = source.again();
    if (bytes == nullptr) {
        return false;
    }
    bytes->keepDigest();
    std::vector<char> block(blockSize);
    ssize_t count = 1;
    while (count > 0 && bytes->bytesRead() < digest.size()) {
        const std::uint64_t left = digest.size() - bytes->bytesRead();
        count = bytes->read(block.data(), std::min<std::uint64_t>(block.size(), left));
    }
    return bytes->digest() == digest;
}

} // namespace

bool KnownContent::isStillIn(const Source &source) const {
    const auto now = source.state();
    if (!state || now == state) {
        return true;
    }
    const bool hasSameSize = now && now->size - now->begin == state->size - state->begin;
    return hasSameSize && digest && beginsWith(source, *digest);
}

} // namespace pelluvia::xml
