// SPDX-License-Identifier: MIT

#include <Pelluvia/gpxwriter/GPXWriter.h>

#include <Pelluvia/gpxwriter/internal/DictionaryStrings.h>
#include <Pelluvia/gpxwriter/internal/Elements.h>
#include <Pelluvia/gpxwriter/internal/PointText.h>
#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/GPXNamespaces.h>

#include <array>
#include <string_view>

namespace pelluvia {

namespace {

/// A line of a lap that holds one number of the extras, left out when the number is 0.
struct NumberLine {
    enum class Type { Integer, Float };

    Key key;
    Type type;
    std::string_view before;
    std::string_view after;
};

using enum NumberLine::Type;

constexpr std::array<NumberLine, 3> measurementLines = {{
    {extras::totalTime, Float, "\t<elapsedTime>", "</elapsedTime>\n"},
    {extras::calories, Integer, "\t<calories>", "</calories>\n"},
    {extras::distance, Float, "\t<distance>", "</distance>\n"},
}};

// The order is part of the format; of power, unlike the others, the maximum comes first.
constexpr std::array<NumberLine, 10> summaryLines = {{
    {extras::hrAvg, Integer, "\t<summary kind=\"avg\" name=\"hr\">", "</summary>\n"},
    {extras::hrMax, Integer, "\t<summary kind=\"max\" name=\"hr\">", "</summary>\n"},
    {extras::cadenceAvg, Integer, "\t<summary kind=\"avg\" name=\"cadence\">", "</summary>\n"},
    {extras::cadenceMax, Integer, "\t<summary kind=\"max\" name=\"cadence\">", "</summary>\n"},
    {extras::speedAvg, Float, "\t<summary kind=\"avg\" name=\"speed\">", "</summary>\n"},
    {extras::speedMax, Float, "\t<summary kind=\"max\" name=\"speed\">", "</summary>\n"},
    {extras::powerMax, Float, "\t<summary kind=\"max\" name=\"power\">", "</summary>\n"},
    {extras::powerAvg, Float, "\t<summary kind=\"avg\" name=\"power\">", "</summary>\n"},
    {extras::altMin, Float, "\t<summary kind=\"min\" name=\"altitude\">", "</summary>\n"},
    {extras::altMax, Float, "\t<summary kind=\"max\" name=\"altitude\">", "</summary>\n"},
}};

/// Writes an integer between the two texts, unless it is 0.
void writeIntegerIfNotZero(OutputFile &file, std::string_view before, int value,
                           std::string_view after) {
    if (value != 0) {
        writeIntegerBetween(file, before, value, after);
    }
}

void writeLine(OutputFile &file, const NumberLine &line, const Dictionary *extras) {
    if (line.type == Integer) {
        writeIntegerIfNotZero(file, line.before, getIntFromDictionary(extras, line.key),
                              line.after);
        return;
    }
    const float value = getFloatFromDictionary(extras, line.key);
    if (value != 0.0F) {
        writeFixedBetween(file, line.before, double{value}, line.after);
    }
}

/// Writes a string of the extras as it is, without escaping, between the two texts.
void writeRawString(OutputFile &file, std::string_view before, const char *string,
                    std::string_view after) {
    if (string != nullptr) {
        file.write(before);
        file.write(string);
        file.write(after);
    }
}

/// The track that the lap is a part of, by name or else by number, and the lap's place in it.
void writeTrackReference(OutputFile &file, const Dictionary *extras) {
    const char *name = borrowedStringFromDictionary(extras, extras::trackName);
    const int number = getIntFromDictionary(extras, extras::trackNumber);
    const int index = getIntFromDictionary(extras, extras::trackIndex);
    const int end = getIntFromDictionary(extras, extras::trackEnd);
    if (name == nullptr && index == 0 && number == 0) {
        return;
    }
    if (name != nullptr) {
        file.write("\t<trackReference trackName=\"");
        writeEscaped(file, name);
        file.write("\">\n");
    } else {
        writeIntegerBetween(file, "\t<trackReference trackNumber=\"", number, "\">\n");
    }
    writeIntegerIfNotZero(file, "\t\t<startPoint>", index, "</startPoint>\n");
    writeIntegerIfNotZero(file, "\t\t<endPoint>", end, "</endPoint>\n");
    file.write("\t</trackReference>\n");
}

void writeExtras(OutputFile &file, const Dictionary *extras) {
    for (const NumberLine &line : measurementLines) {
        writeLine(file, line, extras);
    }
    writeTrackReference(file, extras);
    for (const NumberLine &line : summaryLines) {
        writeLine(file, line, extras);
    }
    writeRawString(file, "\t<trigger kind=\"",
                   borrowedStringFromDictionary(extras, extras::trigger), "\"/>\n");
    writeRawString(file, "\t<intensity>", borrowedStringFromDictionary(extras, extras::intensity),
                   "</intensity>\n");
}

/// The lap's end points, where they have a position, and its start time.
void writePlaceAndTime(GPXDocument &document, const GPSPoint &start, const GPSPoint &end) {
    TextCursor text(document.file->reserve(2 * largestPosition + largestTime + 64));
    if (start.latitude < dataOnlyLatitude) {
        appendPosition(text, "\t<startPoint", start.latitude, start.longitude);
        text.literal("/>\n");
    }
    if (end.latitude < dataOnlyLatitude) {
        appendPosition(text, "\t<endPoint", end.latitude, end.longitude);
        text.literal("/>\n");
    }
    text.literal("\t<startTime>");
    // The element stands in any case, for a time that cannot be broken down with that of no time.
    if (!text.timestamp(document.timestamps, start.time)) {
        text.literal("1970-01-01T00:00:00Z");
    }
    text.literal("</startTime>\n");
    document.file->commit(text.position());
}

} // namespace

void GPXWriteLapInfo(GPXRef document, GPSPoint start, GPSPoint end, const Dictionary *extras) {
    GPXWriteTrackEnd(document);
    OutputFile &file = *document->file;
    if (!document->inDocumentExtensions) {
        file.write("<extensions>");
        document->inDocumentExtensions = true;
    }
    file.write("<gpxdata:lap xmlns=\"" PELLUVIA_GPXDATA_NAMESPACE "\">\n");
    int index = 0;
    if (getIntFromDictionaryIfPresent(extras, extras::index, &index) != 0) {
        writeIntegerBetween(file, "\t<index>", index, "</index>\n");
    }
    writePlaceAndTime(*document, start, end);
    writeExtras(file, extras);
    file.write("</gpxdata:lap>\n");
}

} // namespace pelluvia
