// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/ContentDigest.h>

#include <algorithm>
#include <cstring>

namespace pelluvia::xml {

namespace {

/// Two words that are added at once (an extension of the compilers that this is built with).
using Pair [[gnu::vector_size(16)]] = std::uint64_t;

/// The sums of the words at one place of all stripes.
struct Column {
    Pair sum;
    Pair weighted;

    explicit Column(const std::uint64_t *sums, const std::uint64_t *weights) noexcept
        : sum{sums[0], sums[1]}, weighted{weights[0], weights[1]} {}

    void add(const char *at) noexcept {
        Pair words;
        std::memcpy(&words, at, sizeof words);
        sum += words;
        weighted += sum;
    }
    void store(std::uint64_t *sums, std::uint64_t *weights) const noexcept {
        std::memcpy(sums, &sum, sizeof sum);
        std::memcpy(weights, &weighted, sizeof weighted);
    }
};

} // namespace

/// Adds whole stripes.
void ContentDigest::addStripes(const char *bytes, std::size_t count) noexcept {
    static_assert(laneCount == 8);
    Column a(sums_.data(), weighted_.data());
    Column b(&sums_[2], &weighted_[2]);
    Column c(&sums_[4], &weighted_[4]);
    Column d(&sums_[6], &weighted_[6]);
    for (; count != 0; --count, bytes += stripeSize) {
        a.add(bytes);
        b.add(bytes + 16);
        c.add(bytes + 32);
        d.add(bytes + 48);
    }
    a.store(sums_.data(), weighted_.data());
    b.store(&sums_[2], &weighted_[2]);
    c.store(&sums_[4], &weighted_[4]);
    d.store(&sums_[6], &weighted_[6]);
}

void ContentDigest::add(std::string_view bytes) noexcept {
    const auto held = static_cast<std::size_t>(size_ % stripeSize);
    size_ += bytes.size();
    if (held != 0) {
        const std::size_t count = std::min(bytes.size(), stripeSize - held);
        std::copy_n(bytes.begin(), count, rest_.begin() + held);
        bytes.remove_prefix(count);
        if (held + count < stripeSize) {
            return;
        }
        addStripes(rest_.data(), 1);
        rest_ = {};
    }
    const std::size_t stripes = bytes.size() / stripeSize;
    addStripes(bytes.data(), stripes);
    bytes.remove_prefix(stripes * stripeSize);
    std::copy(bytes.begin(), bytes.end(), rest_.begin());
}

} // namespace pelluvia::xml
