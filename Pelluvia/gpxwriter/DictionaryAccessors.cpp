// SPDX-License-Identifier: MIT

#include <Pelluvia/gpxwriter/GPXWriter.h>

#include <Pelluvia/gpxwriter/internal/DictionaryStrings.h>
#include <Pelluvia/text/Text.h>

#include <cstdlib>
#include <cstring>
#include <optional>

namespace pelluvia {

namespace {

std::optional<Number> findNumber(const Dictionary *dictionary, const Key &key) noexcept {
    return dictionary != nullptr ? dictionary->number(key) : std::nullopt;
}

std::optional<std::string_view> findASCII(const Dictionary *dictionary, const Key &key) noexcept {
    const std::optional<std::string_view> text =
        dictionary != nullptr ? dictionary->string(key) : std::nullopt;
    return text && isASCII(*text) ? text : std::nullopt;
}

} // namespace

const char *borrowedStringFromDictionary(const Dictionary *dictionary, const Key &key) noexcept {
    const std::optional<std::string_view> text = findASCII(dictionary, key);
    return text ? text->data() : nullptr;
}

float getFloatFromDictionary(const Dictionary *dictionary, const Key &key) {
    const std::optional<Number> number = findNumber(dictionary, key);
    return number ? number->floatValue() : 0.0F;
}

int getIntFromDictionary(const Dictionary *dictionary, const Key &key) {
    const std::optional<Number> number = findNumber(dictionary, key);
    return number ? number->intValue() : 0;
}

int getIntFromDictionaryIfPresent(const Dictionary *dictionary, const Key &key, int *value) {
    const std::optional<Number> number = findNumber(dictionary, key);
    if (!number) {
        return 0;
    }
    *value = number->intValue();
    return 1;
}

char *getMallocedStringFromDictionary(const Dictionary *dictionary, const Key &key) {
    const std::optional<std::string_view> text = findASCII(dictionary, key);
    if (!text) {
        return nullptr;
    }
    // A little more than the text needs, so that a caller can add to it in place.
    constexpr std::size_t spare = 10;
    auto *copy = static_cast<char *>(std::malloc(text->size() + spare));
    if (copy != nullptr) {
        std::memcpy(copy, text->data(), text->size());
        copy[text->size()] = '\0';
    }
    return copy;
}

} // namespace pelluvia
