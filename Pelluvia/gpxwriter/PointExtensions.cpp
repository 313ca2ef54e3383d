// SPDX-License-Identifier: MIT

#include <Pelluvia/gpxwriter/internal/PointExtensions.h>

#include <Pelluvia/gpxwriter/GPXWriter.h>
#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/text/Text.h>

#include <array>
#include <cstdlib>

namespace pelluvia {

namespace {

/// A sensor's text fills at most a buffer of 255 bytes with its closing NUL.
constexpr std::size_t largestSensor = 254;

/// The longest tag is `<gpxdata:distance sensor="`.
constexpr std::size_t largestTag = 32;
static_assert(3 * (2 * largestTag + maxIntegerText) + 2 * largestTag + largestSensor +
                  maxFixedText <=
              largestPointExtensions);

/// Appends tags that all have the same prefix or none.
class PrefixedTags {
  public:
    PrefixedTags(TextCursor &text, bool usePrefix) noexcept : text_(text), usePrefix_(usePrefix) {}

    /// `<`, the prefix, and the rest of the tag.
    template <std::size_t size>
    TextCursor &start(const char (&rest)[size]) noexcept {
        return prefixed("<").literal(rest);
    }
    /// `</`, the prefix, and the rest of the tag.
    template <std::size_t size>
    TextCursor &end(const char (&rest)[size]) noexcept {
        return prefixed("</").literal(rest);
    }
    /// An element that holds a number, when the dictionary has it.
    template <std::size_t size>
    void integerElement(const Dictionary &extras, const Key &key,
                        const char (&nameAndBracket)[size]) noexcept {
        int value = 0;
        if (getIntFromDictionaryIfPresent(&extras, key, &value) != 0) {
            start(nameAndBracket).integer(value);
            end(nameAndBracket);
        }
    }

  private:
    template <std::size_t size>
    TextCursor &prefixed(const char (&bracket)[size]) noexcept {
        text_.literal(bracket);
        return usePrefix_ ? text_.literal("gpxdata:") : text_;
    }

    TextCursor &text_;
    bool usePrefix_;
};

/// The sensor's text as it can be written: empty when it is not ASCII or too long, and cut at an
/// embedded NUL.
std::string_view writableSensor(std::string_view sensor) noexcept {
    if (sensor.size() > largestSensor || !isASCII(sensor)) {
        return {};
    }
    return sensor.substr(0, sensor.find('\0'));
}

void appendDistanceAndSensor(TextCursor &text, PrefixedTags &tags,
                             const Dictionary &extras) noexcept {
    const auto distance = extras.number(extras::distance);
    const auto sensor = extras.string(extras::sensor);

    if (distance && sensor) {
        tags.start("distance sensor=\"").string(writableSensor(*sensor)).literal("\">");
    } else if (distance) {
        tags.start("distance>");
    } else if (sensor) {
        tags.start("sensor kind=\"").string(writableSensor(*sensor)).literal("\"/>");
    }
    if (distance) {
        text.fixed(double{distance->floatValue()});
        tags.end("distance>");
    }
}

} // namespace

void appendPointExtensions(TextCursor &text, const Dictionary *extras, bool usePrefix) noexcept {
    if (extras == nullptr) {
        return;
    }
    PrefixedTags tags(text, usePrefix);
    tags.integerElement(*extras, extras::hr, "hr>");
    tags.integerElement(*extras, extras::cadence, "cadence>");
    tags.integerElement(*extras, extras::temp, "temp>");
    appendDistanceAndSensor(text, tags, *extras);
}

char *GPXMakePointExtensions(const Dictionary *extras, int usePrefix) {
    std::array<char, largestPointExtensions> buffer;
    TextCursor text(buffer.data());
    appendPointExtensions(text, extras, usePrefix != 0);
    const auto size = static_cast<std::size_t>(text.position() - buffer.data());
    if (size == 0) {
        return nullptr;
    }
    auto *copy = static_cast<char *>(std::malloc(size + 1));
    if (copy != nullptr) {
        std::memcpy(copy, buffer.data(), size);
        copy[size] = '\0';
    }
    return copy;
}

} // namespace pelluvia
