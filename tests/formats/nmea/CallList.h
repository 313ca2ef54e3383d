#pragma once

#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/GPSOutputReceiver.h>

#include <functional>
#include <gtest/gtest.h>
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

/// Keeps the calls as short texts, in order, and the points of each kind.
class CallList : public GPSOutputReceiver {
  public:
    std::vector<std::string> calls; ///< points by their kind only
    std::vector<SeenPoint> trackPoints;
    std::vector<SeenPoint> wayPoints;
    std::function<void()> onTrackPoint;

    void newTrackSegment() override { calls.emplace_back("segment"); }
    void newTrack(const Dictionary *extra) override { calls.push_back("track" + textOf(extra)); }
    void newRoute(const Dictionary *extra) override { calls.push_back("route" + textOf(extra)); }
    void trackPoint(GPSPoint point, const Dictionary *extra) override {
        calls.emplace_back("point");
        trackPoints.push_back(seen(point, extra));
        if (onTrackPoint) {
            onTrackPoint();
        }
    }
    void wayPoint(GPSPoint point, const Dictionary *extra) override {
        calls.push_back("waypoint" + textOf(extra));
        wayPoints.push_back(seen(point, extra));
    }
    void routePoint(GPSPoint /*point*/, const Dictionary *extra) override {
        calls.push_back("routePoint" + textOf(extra));
    }
    void poiPoint(GPSPoint /*point*/, const Dictionary * /*extra*/) override {
        calls.emplace_back("poi");
    }
    void lapInfoStart(GPSPoint /*start*/, GPSPoint /*end*/,
                      const Dictionary * /*extras*/) override {
        calls.emplace_back("lap");
    }
    void startTransfer(const void * /*sender*/, int kind, const Dictionary *extra) override {
        calls.push_back("start " + std::to_string(kind) + textOf(extra));
    }
    void endTransfer(int kind) override { calls.push_back("end " + std::to_string(kind)); }
    void currentPosition(GPSPoint /*point*/, int /*accuracy*/) override {
        calls.emplace_back("position");
    }
    void warning(const Report & /*object*/) override { calls.emplace_back("warning"); }
    void error(const Report &error) override {
        calls.push_back("error " + std::get<ErrorPtr>(error)->localizedDescription());
    }
    void gpsStateChange(int state) override { calls.push_back("state " + std::to_string(state)); }
    void startSending(const void * /*sender*/, int kind, const Dictionary * /*extra*/) override {
        calls.push_back("sending " + std::to_string(kind));
    }
    void sendProgress(int /*count*/) override { calls.emplace_back("progress"); }
    void endSending(int /*kind*/) override { calls.emplace_back("sent"); }

  private:
    /// " key=value" for each entry.
    static std::string textOf(const Dictionary *extra) {
        std::string text;
        if (extra != nullptr) {
            for (const auto &[value, key] : *extra) {
                text.append(" ").append(key.name()).append("=");
                text.append(value.string().has_value()
                                ? std::string(*value.string())
                                : std::to_string(value.number()->intValue()));
            }
        }
        return text;
    }
    static SeenPoint seen(GPSPoint point, const Dictionary *extra) {
        SeenPoint result{point, std::nullopt, {}};
        if (extra != nullptr) {
            if (const auto speed = extra->number(extras::speed)) {
                EXPECT_EQ(speed->type(), Number::Type::Float);
                result.speed = speed->floatValue();
            }
            result.name = extra->string(extras::name).value_or("");
        }
        return result;
    }
};

} // namespace pelluvia::testing
