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

void writeGeocache(GPXRef document, const Geocache &cache) {
    document->file->write("<geocache:cache xmlns=\"" PELLUVIA_GEOCACHE_NAMESPACE "\">\n");
    GPXWriteElementWithStringIfNotEmpty(document, "owner", cache.owner);
    GPXWriteElementWithStringIfNotEmpty(document, "difficulty", cache.difficulty);
    GPXWriteElementWithStringIfNotEmpty(document, "terrain", cache.terrain);
    GPXWriteElementWithStringIfNotEmpty(document, "type", cache.type);
    document->file->write("</geocache:cache>\n");
}

void writeExtensions(GPXRef document, const Dictionary *extras) {
    const Geocache cache(extras);
    const float proximity = getFloatFromDictionary(extras, extras::proximity);
    const bool hasProximity = proximity != 0.0F;
    if (!cache.isGiven() && !hasProximity) {
        return;
    }
    document->file->write("<extensions>");
    if (hasProximity) {
        writeFixedBetween(*document->file,
                          "<gpxdata:proximity xmlns=\"" PELLUVIA_GPXDATA_NAMESPACE "\">",
                          double{proximity}, "</gpxdata:proximity>\n");
    }
    if (cache.isGiven()) {
        writeGeocache(document, cache);
    }
    document->file->write("</extensions>\n");
}

/// The first line's part that is not an element of text: position, elevation and time.
void writePointStart(GPXRef document, std::int64_t time, double latitude, double longitude,
                     double altitude) {
    TextCursor text(document->file->reserve(largestPosition + largestElevation + largestTime));
    if (document->inRoute) {
        appendPosition(text, "\t<rtept", latitude, longitude);
    } else {
        appendPosition(text, "<wpt", latitude, longitude);
    }
    text.literal(">");
    appendElevation(text, altitude);
    appendTime(text, document->timestamps, time);
    document->file->commit(text.position());
}

} // namespace

void GPXWriteWayPoint(GPXRef document, std::int64_t time, const char *name, const char *type,
                      const char *comment, const char *symbol, const Dictionary *extras,
                      double latitude, double longitude, double altitude) {
    GPXWriteTrackEnd(document);
    writePointStart(document, time, latitude, longitude, altitude);
    GPXWriteElementWithStringIfNotEmpty(document, "name", name);
    GPXWriteElementWithStringIfNotEmpty(document, "cmt", comment);
    GPXWriteElementWithStringIfNotEmpty(document, "sym", symbol);
    GPXWriteElementWithStringIfNotEmpty(document, "type", type);
    writeExtensions(document, extras);
    document->file->write(document->inRoute ? "</rtept>\n" : "</wpt>\n");
}

} // namespace pelluvia
