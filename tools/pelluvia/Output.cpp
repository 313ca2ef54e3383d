#include <tools/pelluvia/Output.h>

#include <tools/pelluvia/calllog/CallLogWriter.h>

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
            .hasFailed = [exporter] { return bool(exporter->writeFailure()); },
            .openFailure = {}};
}

Output openCallLog(const std::string &path, const std::shared_ptr<ReportCollector> &collector,
                   const std::shared_ptr<GPXExporterProgress> &progress) {
    std::error_code error;
    const auto writer = CallLogWriter::initWithPath(path, error);
    if (writer == nullptr) {
        return {.receiver = nullptr, .finish = {}, .hasFailed = {}, .openFailure = error};
    }
    writer->setErrorObject(collector, &ReportCollector::take);
    writer->setProgress(progress);
    // A log holds what the producers sent and nothing of the host's own.
    return {.receiver = writer,
            .finish = [writer] { return writer->close(); },
            .hasFailed = [writer] { return bool(writer->failure()); },
            .openFailure = {}};
}

} // namespace

Output Output::open(Format format, const std::string &path,
                    const std::shared_ptr<ReportCollector> &collector,
                    const std::shared_ptr<GPXExporterProgress> &progress) {
    return format == Format::GPX ? openGPX(path, collector, progress)
                                 : openCallLog(path, collector, progress);
}

} // namespace pelluvia::host
