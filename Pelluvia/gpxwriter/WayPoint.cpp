// SPDX-License-Identifier: MIT

#include <Pelluvia/gpxwriter/GPXWriter.h>

#include <Pelluvia/gpxwriter/internal/DictionaryStrings.h>
#include <Pelluvia/gpxwriter/internal/Elements.h>
#include <Pelluvia/gpxwriter/internal/PointText.h>
#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/GPXNamespaces.h>

namespace pelluvia {

namespace {

/// What a dictionary says about a geocache; the strings are borrowed.
struct Geocache {
    const char *owner;
    const char *difficulty;
    const char *terrain;
    const char *type;

    explicit Geocache(const Dictionary *extras) noexcept
        : owner(borrowedStringFromDictionary(extras, extras::geocacheOwner)),
          difficulty(borrowedStringFromDictionary(extras, extras::difficulty)),
          terrain(borrowedStringFromDictionary(extras, extras::terrain)),
          type(borrowedStringFromDictionary(extras, extras::geocacheType)) {}

    [[nodiscard]] bool isGiven() const noexcept {
        return owner != nullptr || difficulty != nullptr || terrain != nullptr || type != nullptr;
    }
};

void appendGeocache(TextCursor &text, const Geocache &cache) noexcept {
    text.literal("<geocache:cache xmlns=\"" PELLUVIA_GEOCACHE_NAMESPACE "\">\n");
    appendElementIfGiven(text, "owner", cache.owner);
    appendElementIfGiven(text, "difficulty", cache.difficulty);
    appendElementIfGiven(text, "terrain", cache.terrain);
    appendElementIfGiven(text, "type", cache.type);
    text.literal("</geocache:cache>\n");
}

void appendExtensions(TextCursor &text, const Dictionary *extras) noexcept {
    const Geocache cache(extras);
    const float proximity = getFloatFromDictionary(extras, extras::proximity);
    const bool hasProximity = proximity != 0.0F;
    if (!cache.isGiven() && !hasProximity) {
        return;
    }
    text.literal("<extensions>");
    if (hasProximity) {
        text.literal("<gpxdata:proximity xmlns=\"" PELLUVIA_GPXDATA_NAMESPACE "\">");
        text.fixed(double{proximity}).literal("</gpxdata:proximity>\n");
    }
    if (cache.isGiven()) {
        appendGeocache(text, cache);
    }
    text.literal("</extensions>\n");
}

constexpr std::size_t textElements = 8; // four of the point, four of its geocache
constexpr std::size_t largestWayPoint = 8 * 1024;
static_assert(largestPosition + largestElevation + largestTime + textElements * largestTextElement +
                  maxFixedText + sizeof PELLUVIA_GPXDATA_NAMESPACE +
                  sizeof PELLUVIA_GEOCACHE_NAMESPACE + 512 <=
              largestWayPoint);
static_assert(largestWayPoint <= OutputFile::largestReservation);

} // namespace

void GPXWriteWayPoint(GPXRef document, std::int64_t time, const char *name, const char *type,
                      const char *comment, const char *symbol, const Dictionary *extras,
                      double latitude, double longitude, double altitude) {
    GPXWriteTrackEnd(document);
    TextCursor text(document->file->reserve(largestWayPoint));
    if (document->inRoute) {
        appendPosition(text, "\t<rtept", latitude, longitude);
    } else {
        appendPosition(text, "<wpt", latitude, longitude);
    }
    text.literal(">");
    appendElevation(text, altitude);
    appendTime(text, document->timestamps, time);
    appendElementIfGiven(text, "name", name);
    appendElementIfGiven(text, "cmt", comment);
    appendElementIfGiven(text, "sym", symbol);
    appendElementIfGiven(text, "type", type);
    appendExtensions(text, extras);
    if (document->inRoute) {
        text.literal("</rtept>\n");
    } else {
        text.literal("</wpt>\n");
    }
    document->file->commit(text.position());
}

} // namespace pelluvia
