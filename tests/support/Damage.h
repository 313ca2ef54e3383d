// SPDX-License-Identifier: MIT

#pragma once

#include <tests/support/Chance.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace pelluvia::testing {

/// Damages documents, the same way each time: bytes are changed, removed, inserted, doubled, or
/// come from somewhere else. The more one expects of it, the smaller the documents should be.
class Damage {
  public:
    explicit Damage(std::uint64_t seed) : chance_(seed) {}

    /// A number below the limit, which is not 0.
    [[nodiscard]] std::size_t below(std::size_t limit) { return chance_.below(limit); }

    /// At most `size` bytes of the document: its beginning, or its beginning and its end.
    [[nodiscard]] std::string cut(const std::string &document, std::size_t size) {
        if (document.size() <= size) {
            return document;
        }
        const std::size_t head = size / 4 + below(3 * size / 4);
        return document.substr(0, head) + document.substr(document.size() - (size - head));
    }

    /// The document with one to four faults.
    [[nodiscard]] std::string apply(std::string document) {
        for (std::size_t faults = 1 + below(4); faults != 0 && !document.empty(); --faults) {
            applyOne(document);
        }
        return document;
    }

  private:
    void applyOne(std::string &document) {
        constexpr std::string_view markup = "<>/&;='\"!?-[]: \n\rx#";
        const std::size_t at = below(document.size());
        const std::size_t size = std::min(document.size() - at, 1 + below(below(8) == 0 ? 200 : 4));
        const std::size_t to = below(document.size());
        switch (below(7)) {
        case 0:
            document[at] =
                static_cast<char>(static_cast<unsigned char>(document[at]) ^ (1U << below(8)));
            break;
        case 1:
            document[at] = static_cast<char>(below(256));
            break;
        case 2:
            document.erase(at, size);
            break;
        case 3:
            document.insert(at, 1, markup[below(markup.size())]);
            break;
        case 4:
            document[at] = markup[below(markup.size())];
            break;
        case 5:
            document.insert(at, document.substr(at, size));
            break;
        default:
            document.insert(to, document.substr(at, size));
            break;
        }
    }

    Chance chance_;
};

/// How many damaged documents a test looks at; fewer where each takes much longer.
inline constexpr std::size_t damagedDocuments =
#if defined(__SANITIZE_ADDRESS__)
    4'000;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
    4'000;
#else
    20'000;
#endif
#else
    20'000;
#endif

} // namespace pelluvia::testing
