// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/ExtrasKeys.h>
#include <tests/support/SpyReceiver.h>

#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace pelluvia::testing {

/// A point as a receiver got it.
struct SeenPoint {
    GPSPoint point;
    std::optional<float> speed;
    std::string name;
};

/// Keeps the calls as short texts, too, and the points of each kind.
class CallList : public SpyReceiver {
  public:
    std::vector<std::string> calls; ///< points by their kind only
    std::vector<SeenPoint> trackPoints;
    std::vector<SeenPoint> wayPoints;
    std::function<void()> onTrackPoint;

  protected:
    void add(SeenCall call) override { // NOLINT(performance-unnecessary-value-param)
        calls.push_back(shortText(call));
        if (call.name == "wayPoint") {
            wayPoints.push_back(seenPoint(call));
        } else if (call.name == "trackPoint") {
            trackPoints.push_back(seenPoint(call));
            if (onTrackPoint) {
                onTrackPoint();
            }
        }
    }

  private:
    static std::string shortText(const SeenCall &call) {
        static const std::map<std::string, std::string> shortNames = {
            {"newTrackSegment", "segment"}, {"newTrack", "track"},
            {"newRoute", "route"},          {"trackPoint", "point"},
            {"wayPoint", "waypoint"},       {"poiPoint", "poi"},
            {"lapInfoStart", "lap"},        {"startTransfer", "start"},
            {"endTransfer", "end"},         {"currentPosition", "position"},
            {"gpsStateChange", "state"},    {"startSending", "sending"},
            {"sendProgress", "progress"},   {"endSending", "sent"}};
        const auto found = shortNames.find(call.name);
        std::string text = found != shortNames.end() ? found->second : call.name;
        if (call.number && text != "position") {
            text += " " + std::to_string(*call.number);
        }
        if (call.name == "error") {
            text += " " + std::get<ErrorPtr>(call.report)->localizedDescription();
        }
        return call.name == "trackPoint" ? text : text + textOf(call.extra);
    }
    /// " key=value" for each entry.
    static std::string textOf(const std::optional<Dictionary> &extra) {
        std::string text;
        if (extra) {
            for (const auto &[value, key] : *extra) {
                text.append(" ").append(key.name()).append("=");
                text.append(value.string().has_value()
                                ? std::string(*value.string())
                                : std::to_string(value.number()->intValue()));
            }
        }
        return text;
    }
    static SeenPoint seenPoint(const SeenCall &call) {
        SeenPoint result{call.point, std::nullopt, {}};
        if (call.extra) {
            if (const auto speed = call.extra->number(extras::speed)) {
                EXPECT_EQ(speed->type(), Number::Type::Float);
                result.speed = speed->floatValue();
            }
            result.name = call.extra->string(extras::name).value_or("");
        }
        return result;
    }
};

} // namespace pelluvia::testing
