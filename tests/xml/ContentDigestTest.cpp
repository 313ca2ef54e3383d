// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/ContentDigest.h>

#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <utility>

namespace pelluvia::xml {
namespace {

ContentDigest digestOf(std::string_view bytes) {
    ContentDigest digest;
    digest.add(bytes);
    return digest;
}

std::string numbers(std::size_t size) {
    std::string text;
    for (int i = 0; text.size() < size; ++i) {
        text.append(std::to_string(i)).append(" ");
    }
    return text.substr(0, size);
}

TEST(ContentDigest, DoesNotDependOnHowTheBytesAreCut) {
    const std::string bytes = numbers(500);
    for (const std::size_t size : {0U, 1U, 63U, 64U, 65U, 127U, 128U, 500U}) {
        const std::string_view text = std::string_view(bytes).substr(0, size);
        for (std::size_t first = 0; first <= size; ++first) {
            for (const std::size_t step : {1U, 7U, 64U, 100U, 1000U}) {
                ContentDigest digest;
                digest.add(text.substr(0, first));
                for (std::string_view rest = text.substr(first); !rest.empty();) {
                    digest.add(rest.substr(0, step));
                    rest.remove_prefix(std::min(step, rest.size()));
                }
                ASSERT_EQ(digest, digestOf(text)) << size << " " << first << " " << step;
                ASSERT_EQ(digest.size(), size);
            }
        }
    }
}

TEST(ContentDigest, SeesEveryBitThatChanges) {
    const std::string bytes = numbers(300);
    for (std::size_t bit = 0; bit < 8 * bytes.size(); ++bit) {
        std::string other = bytes;
        other[bit / 8] = static_cast<char>(other[bit / 8] ^ (1 << bit % 8));
        ASSERT_NE(digestOf(other), digestOf(bytes)) << bit;
    }
}

TEST(ContentDigest, SeesHowMuchThereIs) {
    const std::string zeros(300, '\0');
    for (std::size_t size = 0; size < zeros.size(); ++size) {
        EXPECT_NE(digestOf(std::string_view(zeros).substr(0, size)), digestOf(zeros));
    }
}

TEST(ContentDigest, SeesWherePiecesStand) {
    const std::string bytes = numbers(1000);
    for (std::size_t one = 0; one + 64 <= bytes.size(); one += 8) {
        for (std::size_t other = one + 8; other + 8 <= bytes.size(); other += 8) {
            std::string swapped = bytes;
            for (std::size_t i = 0; i < 8; ++i) {
                std::swap(swapped[one + i], swapped[other + i]);
            }
            ASSERT_NE(digestOf(swapped), digestOf(bytes)) << one << " " << other;
        }
    }
}

} // namespace
} // namespace pelluvia::xml
