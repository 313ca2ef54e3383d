// SPDX-License-Identifier: MIT

#include <Pelluvia/gpxwriter/GPXWriter.h>

#include <Pelluvia/gpxwriter/internal/Elements.h>

namespace pelluvia {

void GPXWriteRouteStart(GPXRef document, int number, const char *name, const char *description) {
    GPXWriteTrackEnd(document);
    GPXWriteRouteEnd(document);
    document->inRoute = true;
    document->file->write("<rte>\n");
    GPXWriteElementWithStringIfNotEmpty(document, "name", name);
    GPXWriteElementWithStringIfNotEmpty(document, "desc", description);
    if (number != 0) {
        writeIntegerBetween(*document->file, "\t<number>", number, "</number>\n");
    }
}

void GPXWriteRouteEnd(GPXRef document) {
    if (document->inRoute) {
        document->inRoute = false;
        document->file->write("</rte>\n");
    }
}

} // namespace pelluvia
