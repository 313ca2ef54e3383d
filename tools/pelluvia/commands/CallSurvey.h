// SPDX-License-Identifier: MIT

#pragma once

#include <tools/pelluvia/commands/Survey.h>

#include <Pelluvia/model/NullReceiver.h>

namespace pelluvia::host {

/// A receiver that surveys what it is sent, in the terms of a GPX file: what comes while a route is
/// open are the route's points.
///
/// Threads: as for any receiver.
class CallSurvey : public NullReceiver {
  public:
    [[nodiscard]] const Survey &survey() const noexcept { return survey_; }

    void newTrackSegment() override;
    void newTrack(const Dictionary *extra) override;
    void newRoute(const Dictionary *extra) override;
    void trackPoint(GPSPoint point, const Dictionary *extra) override;
    void wayPoint(GPSPoint point, const Dictionary *extra) override;
    void routePoint(GPSPoint point, const Dictionary *extra) override;
    void endTransfer(int kind) override;

  private:
    void add(const GPSPoint &point, const Dictionary *extra);
    void addTexts(const Dictionary *extra);

    Survey survey_;
    bool isInRoute_ = false;
};

} // namespace pelluvia::host
