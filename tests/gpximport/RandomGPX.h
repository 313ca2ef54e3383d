// SPDX-License-Identifier: MIT

#pragma once

#include <tests/support/Chance.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace pelluvia::testing {

/// Writes what stands in the root element of GPX documents: mostly as it should be, and now and
/// then any known element at any place, in any of the namespaces. Every text is another one, so
/// that it shows where each has gone. For `gpx()`, which binds the prefixes but for `x`, a foreign
/// one.
class RandomGPX {
  public:
    explicit RandomGPX(std::uint64_t seed) : chance_(seed), rarely_(2 + seed % 23) {}

    [[nodiscard]] std::string content() {
        text_.clear();
        for (std::size_t count = 1 + chance_.below(4); count != 0; --count) {
            addSection();
        }
        return text_;
    }

  private:
    static constexpr int deepest = 6;

    void addSection() {
        switch (chance_.below(5)) {
        case 0:
            return addWithin("rte", "", 0, [&] { addPoints("rtept"); });
        case 1:
            return addWithin("trk", "", 0,
                             [&] { addWithin("trkseg", "", 0, [&] { addPoints("trkpt"); }); });
        case 2:
        case 3:
            return addPoints("wpt");
        default:
            return addAnything(0);
        }
    }

    void addPoints(std::string_view name) {
        for (std::size_t count = chance_.below(4); count != 0; --count) {
            addPoint(name, 1);
        }
    }

    void addPoint(std::string_view name, int depth) {
        std::string attributes;
        if (!chance_.oneIn(8)) {
            attributes = " lat='" + number(90) + "' lon='" + number(180) + "'";
        }
        addWithin(name, attributes, depth, [&] {
            for (std::size_t count = chance_.below(5); count != 0; --count) {
                addField(depth + 1);
            }
        });
    }

    /// An element with a text, as points have them.
    void addField(int depth) {
        constexpr std::array fields = {"ele",
                                       "time",
                                       "name",
                                       "number",
                                       "sym",
                                       "desc",
                                       "cmt",
                                       "url",
                                       "urlname",
                                       "gpxx:Temperature",
                                       "gpxx:Proximity",
                                       "tpx:atemp",
                                       "tpx:hr",
                                       "tpx:cad",
                                       "gs:name",
                                       "gs:terrain",
                                       "gs:difficulty",
                                       "gs:type",
                                       "gs:owner",
                                       "gs:encoded_hints",
                                       "gpxdata:cadence",
                                       "gpxdata:hr",
                                       "gpxdata:proximity",
                                       "gpxdata:distance",
                                       "gpxdata:temp",
                                       "gpxdata:index"};
        if (chance_.oneIn(rarely_)) {
            return addAnything(depth);
        }
        const std::string_view name = chance_.oneOf(fields);
        const bool isTime = name == "time";
        addWithin(name, name == "gpxdata:distance" ? " sensor='" + number(9) + "'" : "", deepest,
                  [&] { text_ += isTime ? "2020-06-01T08:26:" + twoDigits() : number(99); });
    }

    /// Any known element, with any others in it.
    void addAnything(int depth) {
        constexpr std::array names = {"wpt",      "rte",      "rtept",         "trk",
                                      "trkseg",   "trkpt",    "link",          "text",
                                      "author",   "src",      "extensions",    "unknown",
                                      "gs:cache", "gs:logs",  "gs:travelbugs", "gpxdata:course",
                                      "x:wpt",    "x:rtept",  "x:trkpt",       "x:trkseg",
                                      "x:rte",    "tpx:trkpt"};
        const std::string_view name = chance_.oneOf(names);
        if (name == "wpt" || name == "rtept" || name == "trkpt") {
            return addPoint(name, depth);
        }
        addWithin(name, name.starts_with("x:") ? " xmlns:x='x'" : "", depth, [&] {
            for (std::size_t count = chance_.below(4); count != 0; --count) {
                chance_.oneIn(3) ? addAnything(depth + 1) : addField(depth + 1);
            }
        });
    }

    template <class Content>
    void addWithin(std::string_view name, std::string_view attributes, int depth,
                   Content &&addContent) {
        text_.append("<").append(name).append(attributes).append(">");
        if (depth <= deepest) {
            addContent();
        }
        text_.append("</").append(name).append(">");
    }

    /// Another number each time, with a whole part below the limit.
    std::string number(std::size_t limit) {
        return std::to_string(chance_.below(limit)) + "." + std::to_string(++numbers_);
    }
    std::string twoDigits() {
        return std::to_string(chance_.below(6)) + std::to_string(chance_.below(10));
    }

    Chance chance_;
    std::size_t rarely_; ///< once in so many times stands anything where a field should
    std::string text_;
    std::size_t numbers_ = 0;
};

} // namespace pelluvia::testing
