// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commands/Output.h>

#include <Pelluvia/formats/calllog/CallLogWriter.h>
#include <Pelluvia/formats/nmea/NMEAWriter.h>

#include <Pelluvia/gpxwriter/GPXExporter.h>
#include <Pelluvia/model/TransferKind.h>

#include <cerrno>

namespace pelluvia::host {

namespace {

Output openGPX(const std::string &path, const std::shared_ptr<ReportCollector> &collector,
               const std::shared_ptr<GPXExporterProgress> &progress) {
    errno = 0;
    const auto exporter = GPXExporter::initWithPath(path);
    if (exporter == nullptr) {
        return {.receiver = nullptr,
                .finish = {},
                .flush = {},
                .hasFailed = {},
                .openFailure = {errno != 0 ? errno : EIO, std::generic_category()}};
    }
    exporter->setErrorObject(collector, &ReportCollector::take);
    exporter->setProgress(progress);
    return {.receiver = exporter,
            .finish =
                [exporter] {
                    exporter->gpsStateChange(gpsState::finished);
                    return exporter->writeFailure();
                },
            .flush = [exporter] { exporter->flush(); },
            .hasFailed = [exporter] { return bool(exporter->writeFailure()); },
            .openFailure = {}};
}

Output openCallLog(const std::string &path, const std::shared_ptr<ReportCollector> &collector,
                   const std::shared_ptr<GPXExporterProgress> &progress) {
    std::error_code error;
    const auto writer = CallLogWriter::initWithPath(path, error);
    if (writer == nullptr) {
        return {
            .receiver = nullptr, .finish = {}, .flush = {}, .hasFailed = {}, .openFailure = error};
    }
    writer->setErrorObject(collector, &ReportCollector::take);
    writer->setProgress(progress);
    // A log holds what the producers sent and nothing of the host's own.
    return {.receiver = writer,
            .finish = [writer] { return writer->close(); },
            .flush = [writer] { writer->flush(); },
            .hasFailed = [writer] { return bool(writer->failure()); },
            .openFailure = {}};
}

Output openNMEA(const std::string &path, const std::shared_ptr<ReportCollector> &collector,
                const std::shared_ptr<GPXExporterProgress> &progress) {
    std::error_code error;
    const auto writer = NMEAWriter::initWithPath(path, error);
    if (writer == nullptr) {
        return {
            .receiver = nullptr, .finish = {}, .flush = {}, .hasFailed = {}, .openFailure = error};
    }
    writer->setErrorObject(collector, &ReportCollector::take);
    writer->setProgress(progress);
    return {.receiver = writer,
            .finish = [writer] { return writer->close(); },
            .flush = [writer] { writer->flush(); },
            .hasFailed = [writer] { return bool(writer->failure()); },
            .openFailure = {},
            .remark = [writer] { return textOf(writer->omissions()); }};
}

} // namespace

Output Output::open(Format format, const std::string &path,
                    const std::shared_ptr<ReportCollector> &collector,
                    const std::shared_ptr<GPXExporterProgress> &progress) {
    switch (format) {
    case Format::Calls:
        return openCallLog(path, collector, progress);
    case Format::NMEA:
        return openNMEA(path, collector, progress);
    case Format::GPX:
        break;
    }
    return openGPX(path, collector, progress);
}

} // namespace pelluvia::host
