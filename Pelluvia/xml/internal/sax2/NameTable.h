// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include <libxml/parser.h>
#include <span>
#include <string_view>
#include <vector>

namespace pelluvia::xml {

/// The numbers of names, found by address: the XML library keeps every name of a document once, so
/// that two names are the same exactly when their addresses are.
class NameTable {
  public:
    struct Name {
        std::string_view text;
        std::uint16_t number = 0; ///< position in the vocabulary plus one, or 0
    };

    /// A table of the names, which are entered into the library's dictionary; valid as long as
    /// that.
    NameTable(xmlDictPtr dictionary, std::span<const std::string_view> names);

    /// The name at an address in the dictionary; empty for null.
    [[nodiscard]] Name find(const xmlChar *name) const noexcept {
        for (std::size_t i = home(name);; i = (i + 1) & mask_) {
            const Slot &slot = slots_[i];
            if (slot.address == name) {
                return slot.name;
            }
            if (slot.address == nullptr) {
                return {text(name), 0};
            }
        }
    }

    /// A C string of the library; empty for null.
    [[nodiscard]] static std::string_view text(const xmlChar *name) noexcept {
        return name != nullptr ? std::string_view(reinterpret_cast<const char *>(name))
                               : std::string_view();
    }

  private:
    struct Slot {
        const xmlChar *address = nullptr;
        Name name;
    };

    [[nodiscard]] std::size_t home(const xmlChar *name) const noexcept {
        constexpr std::uint64_t golden = 0x9E3779B97F4A7C15; // spreads addresses that lie close
        return static_cast<std::size_t>((reinterpret_cast<std::uintptr_t>(name) * golden) >> 32U) &
               mask_;
    }

    std::vector<Slot> slots_; // never more than half full
    std::size_t mask_;
};

} // namespace pelluvia::xml
