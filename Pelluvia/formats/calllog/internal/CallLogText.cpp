// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/calllog/internal/CallLogText.h>

#include <Pelluvia/formats/calllog/internal/CallLogLimits.h>

#include <Pelluvia/text/NumberText.h>
#include <Pelluvia/values/Array.h>

#include <algorithm>
#include <cstring>

namespace pelluvia {

namespace {

char *append(char *out, std::string_view text) noexcept {
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
}

bool canBeShown(const Value &value) noexcept {
    switch (value.kind()) {
    case Value::Kind::None:
        return false;
    case Value::Kind::Record:
        return value.unwrap<GPSPoint>() != nullptr;
    case Value::Kind::Array:
        return value.array()->size() <= callLogLimits::elements;
    case Value::Kind::Integer:
    case Value::Kind::Float:
    case Value::Kind::Double:
    case Value::Kind::String:
    case Value::Kind::Dictionary:
        break;
    }
    return true;
}

bool canBeShown(const ErrorValue &value) noexcept {
    const auto *error = std::get_if<ErrorPtr>(&value);
    return error == nullptr || *error != nullptr;
}

} // namespace

void CallLogText::point(const GPSPoint &point) {
    // One reservation for the whole point: five numbers, their names, the braces.
    constexpr std::size_t most = 3 * JSONText::maxRealText + 2 * maxIntegerText + 80;
    char *out = file_.reserve(most);
    out = JSONText::writeReal(append(out, R"({"latitude":)"), point.latitude);
    out = JSONText::writeReal(append(out, R"(,"longitude":)"), point.longitude);
    out = JSONText::writeReal(append(out, R"(,"altitude":)"), point.altitude);
    out = writeInteger(append(out, R"(,"time":)"), point.time);
    out = writeInteger(append(out, R"(,"test":)"), point.test);
    file_.commit(append(out, "}"));
}

void CallLogText::dictionary(const Dictionary *dictionary) {
    if (dictionary == nullptr) {
        raw("null");
    } else {
        entries(*dictionary);
    }
}

void CallLogText::entries(const Dictionary &dictionary) {
    raw("{");
    std::string_view separator;
    for (const Dictionary::Entry &entry : dictionary) {
        if (canBeShown(entry.value)) {
            raw(separator);
            json_.string(entry.key.name());
            raw(":");
            value(entry.value);
            separator = ",";
        }
    }
    raw("}");
}

void CallLogText::elements(const Array &array) {
    raw("[");
    std::string_view separator;
    for (const Value &element : array) {
        if (canBeShown(element)) {
            raw(separator);
            value(element);
            separator = ",";
        }
    }
    raw("]");
}

void CallLogText::value(const Value &value) {
    switch (value.kind()) {
    case Value::Kind::Integer:
        return json_.integer(value.number()->int64Value());
    case Value::Kind::Float:
        return json_.real(value.number()->floatValue());
    case Value::Kind::Double:
        return json_.real(value.number()->doubleValue());
    case Value::Kind::String:
        return json_.string(*value.string());
    case Value::Kind::Record:
        return point(*value.unwrap<GPSPoint>());
    case Value::Kind::Array:
        return elements(*value.array());
    case Value::Kind::Dictionary:
        return entries(*value.dictionary());
    case Value::Kind::None:
        return; // left out by `canBeShown`
    }
}

void CallLogText::report(const Report &report) {
    if (const auto *text = std::get_if<std::string>(&report)) {
        json_.string(*text);
    } else if (const auto *object = std::get_if<ErrorPtr>(&report); object != nullptr && *object) {
        error(**object);
    } else {
        raw("null");
    }
}

void CallLogText::error(const Error &error) {
    raw(R"({"domain":)");
    json_.string(error.domain());
    raw(R"(,"code":)");
    json_.integer(error.code());
    raw(R"(,"userInfo":)");
    userInfo(error.userInfo());
    raw("}");
}

void CallLogText::userInfo(const ErrorInfo &info) {
    raw("{");
    std::string_view separator;
    for (auto pair = info.begin(); pair != info.end(); ++pair) {
        // Of several pairs with one key only the first can be found, by anybody.
        const bool isRepeated = std::any_of(
            info.begin(), pair, [pair](const auto &each) { return each.first == pair->first; });
        if (!isRepeated && canBeShown(pair->second)) {
            raw(separator);
            json_.string(pair->first);
            raw(":");
            errorValue(pair->second);
            separator = ",";
        }
    }
    raw("}");
}

void CallLogText::errorValue(const ErrorValue &value) {
    if (const auto *text = std::get_if<std::string>(&value)) {
        json_.string(*text);
    } else if (const auto *number = std::get_if<std::int64_t>(&value)) {
        json_.integer(*number);
    } else {
        error(*std::get<ErrorPtr>(value));
    }
}

} // namespace pelluvia
