// SPDX-License-Identifier: MIT

/* A program in C99 that writes a GPX file, of somebody else's. */

#include <Pelluvia/gpxwriter/GPXWriter.h>
#include <Pelluvia/model/Version.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int complain(const char *what, int failure) {
    fprintf(stderr, "%s: %s\n", what, strerror(failure));
    return EXIT_FAILURE;
}

/* What the accessors read is what was set. */
static int valuesAreThere(const GPXDictionary *sample) {
    GPXKey *heartRate = GPXKeyCreate("hr");
    GPXKey *missing = GPXKeyCreate("cadence");
    int value = -1;
    const int right = heartRate != NULL && missing != NULL &&
                      getIntFromDictionary(sample, heartRate) == 121 &&
                      getIntFromDictionaryIfPresent(sample, missing, &value) == 0 && value == -1;
    GPXKeyDestroy(heartRate);
    GPXKeyDestroy(missing);
    return right;
}

static void writeRide(GPXRef document) {
    GPXDictionary *track = GPXDictionaryCreate();
    GPXDictionary *sample = GPXDictionaryCreate();
    const GPSPoint start = {47.37, 8.54, 408, 1718000000, 0};
    const GPSPoint end = {47.38, 8.54, 0, 0, 0};
    if (GPXDictionarySetString(track, "name", "Morning ride") != 0 ||
        GPXDictionarySetInt(sample, "hr", 121) != 0 ||
        GPXDictionarySetFloat(sample, "speed", 4.5F) != 0 ||
        GPXDictionarySetDouble(sample, "temp", 21.0) != 0 || !valuesAreThere(sample)) {
        fprintf(stderr, "the dictionaries do not work\n");
        exit(EXIT_FAILURE);
    }
    GPXWriteHeader(document, "a program in C");
    GPXWriteTrackStartWithDictionary(document, track);
    GPXWriteTrackSegment(document);
    GPXWriteTrackPoint(document, start.time, sample, start.latitude, start.longitude,
                       start.altitude);
    GPXWriteTrackEnd(document);
    GPXWriteLapInfo(document, start, end, NULL);
    GPXDictionaryDestroy(track);
    GPXDictionaryDestroy(sample);
}

/* A document that goes nowhere says so. */
static int failuresAreTold(void) {
    GPXRef document = GPXCreate("/dev/full");
    if (document == NULL) {
        return 1; /* this system has none */
    }
    writeRide(document);
    return GPXFlush(document) != 0 && GPXWriteFailure(document) != 0 &&
           GPXCloseChecked(document) != 0;
}

int main(int argc, char *argv[]) {
    GPXRef document = GPXCreate(argc > 1 ? argv[1] : "ride.gpx");
    size_t length = 0;
    char *text = NULL;
    int failure = 0;
    if (document == NULL) {
        return complain("the file cannot be opened for writing", 0);
    }
    writeRide(document);
    failure = GPXCloseChecked(document);
    if (failure != 0) {
        return complain("the file is not complete", failure);
    }
    document = GPXCreateInMemory();
    if (document == NULL) {
        return complain("no document in memory", 0);
    }
    writeRide(document);
    text = GPXCloseInMemory(document, &length);
    if (text == NULL || length != strlen(text) || strstr(text, "<gpxdata:lap") == NULL) {
        return complain("the document in memory is not complete", 0);
    }
    free(text);
    if (!failuresAreTold()) {
        return complain("a full disk went unnoticed", 0);
    }
    printf("written by Pelluvia %g\n", PelluviaVersionNumber);
    return EXIT_SUCCESS;
}
