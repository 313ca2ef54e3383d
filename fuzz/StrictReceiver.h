// SPDX-License-Identifier: MIT

#pragma once

#include "Require.h"

#include <Pelluvia/model/GPSOutputReceiver.h>

namespace pelluvia::fuzz {

/// A receiver to which every call is a broken rule: a base for those that let through only what
/// their producer makes.
class StrictReceiver : public GPSOutputReceiver {
  public:
    void newTrackSegment() override { never("newTrackSegment"); }
    void newTrack(const Dictionary * /*extra*/) override { never("newTrack"); }
    void newRoute(const Dictionary * /*extra*/) override { never("newRoute"); }
    void trackPoint(GPSPoint /*point*/, const Dictionary * /*extra*/) override {
        never("trackPoint");
    }
    void wayPoint(GPSPoint /*point*/, const Dictionary * /*extra*/) override { never("wayPoint"); }
    void routePoint(GPSPoint /*point*/, const Dictionary * /*extra*/) override {
        never("routePoint");
    }
    void poiPoint(GPSPoint /*point*/, const Dictionary * /*extra*/) override { never("poiPoint"); }
    void lapInfoStart(GPSPoint /*start*/, GPSPoint /*end*/,
                      const Dictionary * /*extras*/) override {
        never("lapInfoStart");
    }
    void startTransfer(const void * /*sender*/, int /*kind*/,
                       const Dictionary * /*extra*/) override {
        never("startTransfer");
    }
    void endTransfer(int /*kind*/) override { never("endTransfer"); }
    void currentPosition(GPSPoint /*point*/, int /*accuracy*/) override {
        never("currentPosition");
    }
    void warning(const Report & /*object*/) override { never("warning"); }
    void error(const Report & /*error*/) override { never("error"); }
    void gpsStateChange(int /*state*/) override { never("gpsStateChange"); }
    void startSending(const void * /*sender*/, int /*kind*/,
                      const Dictionary * /*extra*/) override {
        never("startSending");
    }
    void sendProgress(int /*count*/) override { never("sendProgress"); }
    void endSending(int /*kind*/) override { never("endSending"); }

  private:
    /// The name of the call is the rule that shows.
    static void never(const char *call) { require(false, call); }
};

} // namespace pelluvia::fuzz
