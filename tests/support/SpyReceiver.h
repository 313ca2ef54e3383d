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
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

/// \file
/// A receiver that remembers every call as one line of text, and the texts of what it was given.
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
            info += "(" + textOf(std::get<ErrorPtr>(value)) + ")";
        }
    }
    return result + " {" + info + "}";
}

[[nodiscard]] inline std::string textOf(const Report &report) {
    if (const auto *error = std::get_if<ErrorPtr>(&report)) {
        return textOf(*error);
    }
    const auto *message = std::get_if<std::string>(&report);
    return message != nullptr ? testing::quoted(*message) : "nil";
}

/// Remembers all calls in order. What tests look for more closely can be watched: `onCall` sees
/// each line when it is made.
class SpyReceiver : public GPSOutputReceiver {
  public:
    std::vector<std::string> calls;
    std::vector<Report> errors;
    std::function<void(const std::string &line)> onCall;

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

    void newTrackSegment() override { add("newTrackSegment"); }
    void newTrack(const Dictionary *extra) override { add("newTrack: " + textOf(extra)); }
    void newRoute(const Dictionary *extra) override { add("newRoute: " + textOf(extra)); }
    void trackPoint(GPSPoint point, const Dictionary *extra) override {
        add("trackPoint: " + textOf(point) + " extra: " + textOf(extra));
    }
    void wayPoint(GPSPoint point, const Dictionary *extra) override {
        add("wayPoint: " + textOf(point) + " extra: " + textOf(extra));
    }
    void routePoint(GPSPoint point, const Dictionary *extra) override {
        add("routePoint: " + textOf(point) + " extra: " + textOf(extra));
    }
    void poiPoint(GPSPoint point, const Dictionary *extra) override {
        add("poiPoint: " + textOf(point) + " extra: " + textOf(extra));
    }
    void lapInfoStart(GPSPoint start, GPSPoint end, const Dictionary *extras) override {
        add("lapInfoStart: " + textOf(start) + " end: " + textOf(end) +
            " extras: " + textOf(extras));
    }
    void startTransfer(const void *sender, int kind, const Dictionary *extra) override {
        add("startTransfer: " + textOfSender(sender) + " kind: " + std::to_string(kind) +
            " extra: " + textOf(extra));
    }
    void endTransfer(int kind) override { add("endTransfer: " + std::to_string(kind)); }
    void currentPosition(GPSPoint point, int accuracy) override {
        add("currentPosition: " + textOf(point) + " accuracy: " + std::to_string(accuracy));
    }
    void warning(const Report &object) override { add("warning: " + textOf(object)); }
    void error(const Report &error) override {
        errors.push_back(error);
        add("error: " + textOf(error));
    }
    void gpsStateChange(int state) override { add("gpsStateChange: " + std::to_string(state)); }
    void startSending(const void *sender, int kind, const Dictionary *extra) override {
        add("startSending: " + textOfSender(sender) + " kind: " + std::to_string(kind) +
            " extra: " + textOf(extra));
    }
    void sendProgress(int count) override { add("sendProgress: " + std::to_string(count)); }
    void endSending(int kind) override { add("endSending: " + std::to_string(kind)); }

  private:
    [[nodiscard]] static std::string textOfSender(const void *sender) {
        return sender == nullptr ? "nil" : "a sender";
    }
    void add(std::string line) {
        calls.push_back(std::move(line));
        if (onCall) {
            onCall(calls.back());
        }
    }
};

} // namespace pelluvia::testing
