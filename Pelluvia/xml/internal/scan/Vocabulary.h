// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/XMLParserDelegate.h>

#include <cstdint>
#include <span>
#include <string_view>
#include <unordered_map>

namespace pelluvia::xml::scan {

/// The numbers of a delegate's names.
class Vocabulary {
  public:
    explicit Vocabulary(const XMLVocabulary &vocabulary)
        : names_(numbered(vocabulary.names)), namespaces_(numbered(vocabulary.namespaces)) {}

    /// The number of a local name, or 0.
    [[nodiscard]] std::uint16_t name(std::string_view name) const { return find(names_, name); }
    /// The number of a namespace URI, or 0; no namespace has none.
    [[nodiscard]] std::uint16_t uri(std::string_view uri) const {
        return uri.empty() ? std::uint16_t{0} : find(namespaces_, uri);
    }

  private:
    using Numbers = std::unordered_map<std::string_view, std::uint16_t>;

    [[nodiscard]] static Numbers numbered(std::span<const std::string_view> names) {
        Numbers numbers(names.size());
        for (const std::string_view name : names) {
            numbers.emplace(name, static_cast<std::uint16_t>(numbers.size() + 1));
        }
        return numbers;
    }
    [[nodiscard]] static std::uint16_t find(const Numbers &numbers, std::string_view name) {
        const auto found = numbers.find(name);
        return found != numbers.end() ? found->second : 0;
    }

    Numbers names_;
    Numbers namespaces_;
};

} // namespace pelluvia::xml::scan
