// SPDX-License-Identifier: MIT

#include <Pelluvia/gpxwriter/GPXWriter.h>

#include <Pelluvia/gpxwriter/internal/PointExtensions.h>
#include <Pelluvia/gpxwriter/internal/PointText.h>
#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/GPXNamespaces.h>

#include <array>

namespace pelluvia {

namespace {

constexpr std::size_t largestTrackPoint = 4096;
static_assert(largestPosition + largestElevation + largestTime + largestPointExtensions +
                  maxFixedText + sizeof PELLUVIA_GPXDATA_NAMESPACE + 256 <=
              largestTrackPoint);
static_assert(largestTrackPoint <= OutputFile::largestReservation);

/// Unlike a segment that was asked for, a point that comes first opens a track without a name.
void openTrackAndSegment(GPXDocument &document) {
    if (!document.inTrack) {
        document.file->write("<trk>\n");
        document.inTrack = true;
    }
    if (!document.inTrackSegment) {
        document.file->write("<trkseg>\n");
        document.inTrackSegment = true;
    }
}

/// Keeps a point without a position for the end of the segment; drops one that says nothing.
void collectDataPoint(GPXDocument &document, std::int64_t time, const Dictionary *extras,
                      double altitude) {
    std::array<char, largestTrackPoint> buffer;
    TextCursor text(buffer.data());
    text.literal("<gpxdata:dataPt xmlns=\"" PELLUVIA_GPXDATA_NAMESPACE "\">");
    // Time before elevation, the other way round than in trkpt: the order is part of the format.
    appendTime(text, document.timestamps, time);
    appendElevation(text, altitude);
    const char *const extensions = text.position();
    appendPointExtensions(text, extras, false);
    if (text.position() != extensions) {
        text.literal("</gpxdata:dataPt>\n");
        document.segmentExtensions.append(buffer.data(), text.position());
    }
}

void appendExtensions(TextCursor &text, const Dictionary &extras) noexcept {
    text.literal("<extensions>");
    appendPointExtensions(text, &extras, true);
    if (const auto speed = extras.number(extras::speed)) {
        text.literal("<gpxtpx:TrackPointExtension><speed>");
        text.fixed(double{speed->floatValue()});
        text.literal("</speed></gpxtpx:TrackPointExtension>");
    }
    text.literal("</extensions>");
}

} // namespace

void GPXWriteTrackPoint(GPXRef document, std::int64_t time, const Dictionary *extras,
                        double latitude, double longitude, double altitude) {
    openTrackAndSegment(*document);
    if (latitude > dataOnlyLatitude) {
        collectDataPoint(*document, time, extras, altitude);
        return;
    }
    TextCursor text(document->file->reserve(largestTrackPoint));
    appendPosition(text, "\t<trkpt", latitude, longitude);
    text.literal(">");
    appendElevation(text, altitude);
    appendTime(text, document->timestamps, time);
    if (extras != nullptr) {
        appendExtensions(text, *extras);
    }
    text.literal("</trkpt>\n");
    document->file->commit(text.position());
}

} // namespace pelluvia
