// SPDX-License-Identifier: MIT

// Feeds any bytes to the text of the user defaults, and checks that what is understood stays as it
// is, whatever is written beside it. See fuzz/README.md.

#include "Require.h"

#include <Pelluvia/storage/internal/Base64.h>
#include <Pelluvia/storage/internal/DefaultsText.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace {

using namespace pelluvia;
using fuzz::require;
using storage::DefaultsText;

/// Whether both are the same; not-a-number, too, is the same as itself.
bool isSame(const std::optional<DefaultsObject> &one, const std::optional<DefaultsObject> &other) {
    const auto *const real = one ? std::get_if<double>(&*one) : nullptr;
    const auto *const otherReal = other ? std::get_if<double>(&*other) : nullptr;
    const bool areNumbers = real != nullptr && otherReal != nullptr;
    return one == other || (areNumbers && std::isnan(*real) && std::isnan(*otherReal));
}

/// Sets an object, and checks that it is there and that another one is as it was.
void checkSetting(DefaultsText entries, std::string_view key, const DefaultsObject &object,
                  std::string_view otherKey) {
    const auto other = entries.find(otherKey);
    entries.set(key, object);
    DefaultsText again = DefaultsText::parsed(entries.text());
    require(again.badLineCount() == 0, "what is written is understood");
    require(isSame(again.find(key), object), "what was set is read");
    require(key == otherKey || isSame(again.find(otherKey), other), "no entry costs another");
    again.remove(key);
    require(!again.find(key), "what was removed is gone");
    require(key == otherKey || isSame(again.find(otherKey), other), "and nothing else is");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string bytes(data, data + size);
    const DefaultsText entries = DefaultsText::parsed(bytes);
    require((entries.badLineCount() == 0) == (entries.firstBadLine() == 0), "lines count from 1");

    // The text that is written is the same from the first time on.
    const std::string text = entries.text();
    const DefaultsText again = DefaultsText::parsed(text);
    require(again.badLineCount() == 0, "what was kept is understood");
    require(again.text() == text, "nothing changes by being read");

    // A part of the input is a key, another one a value.
    const std::size_t keySize = size == 0 ? 0 : data[0] % (size + 1);
    const std::string key = bytes.substr(0, keySize);
    const std::string value = bytes.substr(keySize);
    const std::string otherKey = bytes.substr(0, bytes.find('='));
    const std::string nameInText = otherKey.substr(otherKey.rfind('\n') + 1);
    require(isSame(entries.find(nameInText), again.find(nameInText)), "entries stay as they are");
    checkSetting(entries, key, value, nameInText);
    checkSetting(entries, key, Data(value.begin(), value.end()), nameInText);
    checkSetting(entries, key, static_cast<std::int64_t>(size), nameInText);
    checkSetting(entries, key, static_cast<double>(size) / 7, nameInText);

    // Base64 of any text is that text, or nothing.
    if (const auto decoded = storage::bytesOfBase64(bytes)) {
        require(storage::base64Of(*decoded) == bytes, "one text for the same bytes");
    }
    return 0;
}
