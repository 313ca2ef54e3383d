// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/calllog/internal/CallValues.h>

#include <Pelluvia/text/UTF8.h>

#include <algorithm>
#include <array>
#include <limits>

namespace pelluvia {

namespace {

constexpr auto pointFields =
    std::to_array<std::string_view>({"latitude", "longitude", "altitude", "time", "test"});
/// The same as keys, which are then looked up once and for all.
const std::array<Key, pointFields.size()> &pointKeys() {
    static const std::array<Key, pointFields.size()> keys = {
        Key(pointFields[0]), Key(pointFields[1]), Key(pointFields[2]), Key(pointFields[3]),
        Key(pointFields[4])};
    return keys;
}
constexpr std::size_t coordinates = 3; // so many of them are reals, the others are integers

bool isReal(const Value &value) noexcept {
    return value.kind() == Value::Kind::Double;
}

bool isInteger(const Value &value) noexcept {
    return value.kind() == Value::Kind::Integer;
}

bool isSpelledAsPoint(const Dictionary &object) {
    if (object.size() != pointFields.size()) {
        return false;
    }
    std::size_t position = 0;
    return std::all_of(object.begin(), object.end(), [&position](const Dictionary::Entry &entry) {
        const std::size_t field = position++;
        return entry.key == pointKeys()[field] &&
               (field < coordinates ? isReal(entry.value) : isInteger(entry.value));
    });
}

/// The number that {"real":"NaN"} or its like stands for.
std::optional<double> notFinite(const Dictionary &object) {
    const auto text = object.size() == 1 ? object.string(Key("real")) : std::nullopt;
    if (!text) {
        return std::nullopt;
    }
    if (*text == "NaN") {
        return std::numeric_limits<double>::quiet_NaN();
    }
    constexpr double infinity = std::numeric_limits<double>::infinity();
    return *text == "Infinity"    ? std::optional(infinity)
           : *text == "-Infinity" ? std::optional(-infinity)
                                  : std::nullopt;
}

std::optional<ErrorValue> errorValue(const Value &value) {
    if (const auto text = value.string()) {
        return std::string(*text);
    }
    if (isInteger(value)) {
        return value.number()->int64Value();
    }
    const Dictionary *object = value.dictionary();
    const ErrorPtr error = object != nullptr ? errorArgument(*object) : nullptr;
    return error != nullptr ? std::optional<ErrorValue>(error) : std::nullopt;
}

} // namespace

Value valueOfObject(const Ref<Dictionary> &object) {
    if (const auto number = notFinite(*object)) {
        return Value(*number);
    }
    if (isSpelledAsPoint(*object)) {
        return Value::wrapping(*pointArgument(*object));
    }
    return Value(object);
}

std::optional<GPSPoint> pointArgument(const Dictionary &object) {
    std::array<std::optional<Number>, pointFields.size()> numbers;
    for (std::size_t field = 0; field < pointFields.size(); ++field) {
        const Value value = object.find(pointKeys()[field]);
        if (!value.number() || (field >= coordinates && !isInteger(value))) {
            return std::nullopt;
        }
        numbers[field] = value.number();
    }
    if (object.size() != pointFields.size()) {
        return std::nullopt;
    }
    return GPSPoint{.latitude = numbers[0]->doubleValue(),
                    .longitude = numbers[1]->doubleValue(),
                    .altitude = numbers[2]->doubleValue(),
                    .time = numbers[3]->int64Value(),
                    .test = numbers[4]->int64Value()};
}

// As deep as the object nests, which its reader limits.
ErrorPtr errorArgument(const Dictionary &object) { // NOLINT(misc-no-recursion)
    const auto domain = object.string(Key("domain"));
    const Value code = object.find(Key("code"));
    const Dictionary *userInfo = object.dictionary(Key("userInfo"));
    if (object.size() != 3 || !domain || !isInteger(code) || userInfo == nullptr) {
        return nullptr;
    }
    ErrorInfo info;
    for (const Dictionary::Entry &entry : *userInfo) {
        auto value = errorValue(entry.value);
        if (!value) {
            return nullptr;
        }
        info.emplace_back(std::string(entry.key.name()), *std::move(value));
    }
    return Error::make(*domain, code.number()->int64Value(), std::move(info));
}

std::string excerpt(std::string_view text) {
    constexpr std::size_t longest = 120;
    std::size_t length = 0;
    while (length < text.size() && length < longest) {
        length += std::max<std::size_t>(wellFormedCharacterLength(text.substr(length)), 1);
    }
    return std::string(text.substr(0, length)) + (length < text.size() ? "..." : "");
}

std::string inQuotes(std::string_view text) {
    return '"' + excerpt(text) + '"';
}

} // namespace pelluvia
