// SPDX-License-Identifier: MIT

#include <Pelluvia/gpxwriter/GPXWriter.h>

#include <Pelluvia/gpxwriter/internal/DictionaryStrings.h>
#include <Pelluvia/gpxwriter/internal/Elements.h>
#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/GPXNamespaces.h>
#include <Pelluvia/text/Companion.h>

#include <optional>

namespace pelluvia {

namespace {

std::optional<int> findInt(const Dictionary *extras, const Key &key) {
    int value = 0;
    return getIntFromDictionaryIfPresent(extras, key, &value) != 0 ? std::optional(value)
                                                                   : std::nullopt;
}

void writeTrackName(GPXRef document, const char *name, std::optional<int> number) {
    if (name != nullptr) {
        GPXWriteElementWithString(document, "name", name);
    } else if (number) {
        writeIntegerBetween(*document->file, "<name>", *number, "</name>\n");
    } else {
        document->file->write("<name>unnamed</name>\n");
    }
}

void writeCourse(OutputFile &file, int courseIndex) {
    file.write("<extensions>\n<gpxdata:course xmlns=\"" PELLUVIA_GPXDATA_NAMESPACE "\">\n");
    writeIntegerBetween(file, "\t<index>", courseIndex, "</index>\n");
    file.write("</gpxdata:course>\n</extensions>\n");
}

} // namespace

void GPXWriteTrackStart(GPXRef document, const char *name, const char *description,
                        const char * /*author*/, const Dictionary *extras) {
    const std::optional<int> index = findInt(extras, extras::index);
    const std::optional<int> courseIndex = findInt(extras, extras::courseIndex);

    GPXWriteTrackEnd(document);
    document->file->write("<trk>\n");
    writeTrackName(document, name, index ? index : courseIndex);
    GPXWriteElementWithStringIfNotEmpty(document, "desc", description);
    if (index) {
        writeIntegerBetween(*document->file, "<number>", *index, "</number>\n");
    }
    if (courseIndex) {
        writeCourse(*document->file, *courseIndex);
    }
    document->inTrack = true;
}

void GPXWriteTrackStartWithDictionary(GPXRef document, const Dictionary *dictionary) {
    GPXWriteTrackStart(document, borrowedStringFromDictionary(dictionary, extras::name),
                       borrowedStringFromDictionary(dictionary, extras::description),
                       borrowedStringFromDictionary(dictionary, extras::author), dictionary);
}

void GPXWriteTrackSegment(GPXRef document) {
    if (!document->inTrack) {
        GPXWriteTrackStart(document, nullptr, nullptr, nullptr, nullptr);
    }
    GPXWriteTrackSegmentEnd(document);
    document->inTrackSegment = true;
    document->file->write("<trkseg>\n");
}

void GPXWriteTrackSegmentEnd(GPXRef document) {
    if (!document->inTrackSegment) {
        return;
    }
    if (!document->segmentExtensions.empty()) {
        document->file->write("<extensions>\n");
        SkerryCFStringFWrite(*document->file, document->segmentExtensions);
        document->file->write("</extensions>\n");
        document->segmentExtensions.clear();
    }
    document->inTrackSegment = false;
    document->file->write("</trkseg>\n");
}

void GPXWriteTrackEnd(GPXRef document) {
    GPXWriteTrackSegmentEnd(document);
    if (document->inTrack) {
        document->inTrack = false;
        document->file->write("</trk>\n");
    }
}

} // namespace pelluvia
