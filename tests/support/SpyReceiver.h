// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/GPSOutputReceiver.h>
#include <Pelluvia/values/Array.h>
#include <Pelluvia/values/Dictionary.h>
#include <Pelluvia/values/Error.h>
#include <Pelluvia/xml/XMLParser.h>

#include <array>
#include <charconv>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

/// \file
/// A receiver that remembers every call, as it came and as one line of text.
/// Numbers carry their type and stand as their shortest text, so that two lines are the same only
/// when the calls were.

namespace pelluvia::testing {

template <class Float>
[[nodiscard]] std::string textOfReal(Float value) {
    std::array<char, 64> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    return std::string(text.data(), end);
}

/// In double quotes; quotes, backslashes and control characters escaped.
[[nodiscard]] inline std::string quoted(std::string_view text) {
    constexpr std::string_view hex = "0123456789ABCDEF";
    std::string result = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\n') {
            result += "\\n";
        } else if (c == '"' || c == '\\') {
            (result += '\\') += c;
        } else if (byte < 0x20 || byte == 0x7F) {
            ((result += "\\x") += hex[byte >> 4U]) += hex[byte & 0xFU];
        } else {
            result += c;
        }
    }
    return result + '"';
}

[[nodiscard]] inline std::string textOf(const GPSPoint &point) {
    return std::string("(") + textOfReal(point.latitude) + ", " + textOfReal(point.longitude) +
           ", " + textOfReal(point.altitude) + ", " + std::to_string(point.time) + ", " +
           std::to_string(point.test) + ")";
}

[[nodiscard]] std::string textOf(const Dictionary *dictionary);

[[nodiscard]] inline std::string textOf(const Value &value) {
    switch (value.kind()) {
    case Value::Kind::None:
        return "nil";
    case Value::Kind::Integer:
        return "int " + std::to_string(value.number()->int64Value());
    case Value::Kind::Float:
        return "float " + textOfReal(value.number()->floatValue());
    case Value::Kind::Double:
        return "double " + textOfReal(value.number()->doubleValue());
    case Value::Kind::String:
        return testing::quoted(*value.string());
    case Value::Kind::Record: {
        const auto *point = value.unwrap<GPSPoint>();
        return point != nullptr ? "point " + textOf(*point) : "record";
    }
    case Value::Kind::Array: {
        std::string result;
        for (const Value &each : *value.array()) {
            result += (result.empty() ? "" : ", ") + textOf(each);
        }
        return "[" + result + "]";
    }
    case Value::Kind::Dictionary:
        return textOf(value.dictionary());
    }
    return "?";
}

[[nodiscard]] inline std::string textOf(const Dictionary *dictionary) {
    if (dictionary == nullptr) {
        return "nil";
    }
    std::string result;
    for (const Dictionary::Entry &each : *dictionary) {
        result +=
            (result.empty() ? "" : ", ") + std::string(each.key.name()) + ": " + textOf(each.value);
    }
    return "{" + result + "}";
}

/// Domain, code and user information. Of a parser's error the texts belong to the XML library, so
/// only the place is shown.
[[nodiscard]] inline std::string textOf(const ErrorPtr &error) {
    if (error == nullptr) {
        return "nil";
    }
    std::string result = error->domain() + " " + std::to_string(error->code());
    if (error->domain() == NSXMLParserErrorDomain) {
        return result + " at " + std::to_string(error->integer(NSXMLParserErrorLineNumber)) + ":" +
               std::to_string(error->integer(NSXMLParserErrorColumn));
    }
    std::string info;
    for (const auto &[key, value] : error->userInfo()) {
        info += (info.empty() ? "" : ", ") + key + ": ";
        if (const auto *text = std::get_if<std::string>(&value)) {
            info += testing::quoted(*text);
        } else if (const auto *number = std::get_if<std::int64_t>(&value)) {
            info += std::to_string(*number);
        } else {
            info.append("(").append(textOf(std::get<ErrorPtr>(value))).append(")");
        }
    }
    return result.append(" {").append(info).append("}");
}

[[nodiscard]] inline std::string textOf(const Report &report) {
    if (const auto *error = std::get_if<ErrorPtr>(&report)) {
        return textOf(*error);
    }
    const auto *message = std::get_if<std::string>(&report);
    return message != nullptr ? testing::quoted(*message) : "nil";
}

/// One call as a receiver saw it. Arguments that the call does not have keep their defaults.
struct SeenCall {
    std::string name; ///< of the method
    GPSPoint point{}; ///< of a lap its start
    GPSPoint end{};   ///< of a lap
    /// Kind, state, count or accuracy; nothing of calls that have none of them.
    std::optional<int> number = std::nullopt;
    std::optional<Dictionary> extra = std::nullopt;
    const Dictionary *address = nullptr; ///< of the dictionary, which may be gone
    const void *sender = nullptr;
    Report report{};

    /// The name, and the number behind a blank.
    [[nodiscard]] std::string text() const {
        return number ? name + " " + std::to_string(*number) : name;
    }
};

/// The call as one line.
[[nodiscard]] inline std::string textOf(const SeenCall &call) {
    const std::string sender = call.sender == nullptr ? "nil" : "a sender";
    const std::string number = std::to_string(call.number.value_or(0));
    const std::string extra = textOf(call.extra ? &*call.extra : nullptr);
    if (call.name == "newTrackSegment") {
        return call.name;
    }
    if (call.name == "newTrack" || call.name == "newRoute") {
        return call.name + ": " + extra;
    }
    if (call.name == "lapInfoStart") {
        return call.name + ": " + textOf(call.point) + " end: " + textOf(call.end) +
               " extras: " + extra;
    }
    if (call.name == "startTransfer" || call.name == "startSending") {
        return call.name + ": " + sender + " kind: " + number + " extra: " + extra;
    }
    if (call.name == "currentPosition") {
        return call.name + ": " + textOf(call.point) + " accuracy: " + number;
    }
    if (call.name == "warning" || call.name == "error") {
        return call.name + ": " + textOf(call.report);
    }
    if (call.number) {
        return call.name + ": " + number;
    }
    return call.name + ": " + textOf(call.point) + " extra: " + extra;
}

/// Remembers all calls in order, whole and as text.
class SpyReceiver : public GPSOutputReceiver {
  public:
    std::vector<SeenCall> seen;
    std::vector<std::string> calls; ///< a line each
    std::vector<Report> errors;
    /// Sees each line when it is made.
    std::function<void(const std::string &line)> onCall;

    /// The names of the calls, with their numbers.
    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> result;
        for (const SeenCall &each : seen) {
            result.push_back(each.text());
        }
        return result;
    }
    /// The lines that begin with the text.
    [[nodiscard]] std::vector<std::string> callsOf(std::string_view beginning) const {
        std::vector<std::string> result;
        for (const std::string &each : calls) {
            if (each.starts_with(beginning)) {
                result.push_back(each);
            }
        }
        return result;
    }
    void forget() {
        seen.clear();
        calls.clear();
        errors.clear();
    }

    void newTrackSegment() override { add({.name = "newTrackSegment"}); }
    void newTrack(const Dictionary *extra) override {
        add({.name = "newTrack", .extra = copy(extra), .address = extra});
    }
    void newRoute(const Dictionary *extra) override {
        add({.name = "newRoute", .extra = copy(extra), .address = extra});
    }
    void trackPoint(GPSPoint point, const Dictionary *extra) override {
        addPoint("trackPoint", point, extra);
    }
    void wayPoint(GPSPoint point, const Dictionary *extra) override {
        addPoint("wayPoint", point, extra);
    }
    void routePoint(GPSPoint point, const Dictionary *extra) override {
        addPoint("routePoint", point, extra);
    }
    void poiPoint(GPSPoint point, const Dictionary *extra) override {
        addPoint("poiPoint", point, extra);
    }
    void lapInfoStart(GPSPoint start, GPSPoint end, const Dictionary *extras) override {
        add({.name = "lapInfoStart",
             .point = start,
             .end = end,
             .extra = copy(extras),
             .address = extras});
    }
    void startTransfer(const void *sender, int kind, const Dictionary *extra) override {
        add({.name = "startTransfer",
             .number = kind,
             .extra = copy(extra),
             .address = extra,
             .sender = sender});
    }
    void endTransfer(int kind) override { add({.name = "endTransfer", .number = kind}); }
    void currentPosition(GPSPoint point, int accuracy) override {
        add({.name = "currentPosition", .point = point, .number = accuracy});
    }
    void warning(const Report &object) override { add({.name = "warning", .report = object}); }
    void error(const Report &error) override {
        errors.push_back(error);
        add({.name = "error", .report = error});
    }
    void gpsStateChange(int state) override { add({.name = "gpsStateChange", .number = state}); }
    void startSending(const void *sender, int kind, const Dictionary *extra) override {
        add({.name = "startSending",
             .number = kind,
             .extra = copy(extra),
             .address = extra,
             .sender = sender});
    }
    void sendProgress(int count) override { add({.name = "sendProgress", .number = count}); }
    void endSending(int kind) override { add({.name = "endSending", .number = kind}); }

  protected:
    virtual void add(SeenCall call) {
        calls.push_back(textOf(call));
        seen.push_back(std::move(call));
        if (onCall) {
            onCall(calls.back());
        }
    }

  private:
    static std::optional<Dictionary> copy(const Dictionary *dictionary) {
        return dictionary != nullptr ? std::optional(*dictionary) : std::nullopt;
    }
    void addPoint(const char *name, const GPSPoint &point, const Dictionary *extra) {
        add({.name = name, .point = point, .extra = copy(extra), .address = extra});
    }
};

} // namespace pelluvia::testing
