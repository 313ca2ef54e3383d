// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/calllog/CallLogReader.h>
#include <Pelluvia/formats/calllog/CallLogWriter.h>
#include <Pelluvia/formats/nmea/NMEADriver.h>
#include <Pelluvia/gpxwriter/GPXExporter.h>

#include <iostream>

using namespace pelluvia;

namespace {

int complain(const std::string &what) {
    std::cerr << what << '\n';
    return 1;
}

} // namespace

// An NMEA log becomes a call log, and the call log a GPX file.
int main(int argc, char *argv[]) {
    if (argc != 4) {
        return complain("usage: consumer NMEA GPX CALLS");
    }
    std::error_code error;
    const auto writer = CallLogWriter::initWithPath(argv[3], error);
    if (writer == nullptr) {
        return complain(error.message());
    }
    NMEADriver driver(*writer);
    if (const ErrorPtr failure = driver.processFile(argv[1])) {
        return complain(failure->localizedDescription());
    }
    if (writer->close()) {
        return complain("the log is not complete");
    }
    const auto exporter = GPXExporter::initWithPath(argv[2]);
    if (exporter == nullptr) {
        return complain("the file cannot be opened for writing");
    }
    CallLogReader reader(*exporter);
    if (const ErrorPtr failure = reader.processFile(argv[3])) {
        return complain(failure->localizedDescription());
    }
    exporter->gpsStateChange(gpsState::finished); // closes the file
    std::cout << textOf(driver.tally()) << '\n';
    return exporter->writeFailure() ? 1 : 0;
}
