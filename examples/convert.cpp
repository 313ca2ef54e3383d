// SPDX-License-Identifier: MIT

// Reads a GPX file and writes it again: a complete small host.
//
//     convert SOURCE.gpx TARGET.gpx
//
// Shows: importer and exporter joined through the one interface that both know; who tells of which
// error; messages to the main thread, which this host takes from the queue when it likes; a target
// that appears only when it is complete.
// Read first: list-waypoints.cpp, <Pelluvia/gpxwriter/GPXExporter.h>,
// <Pelluvia/system/MainThread.h>.

#include <Pelluvia/gpximport/GPXFileImporter.h>
#include <Pelluvia/gpxwriter/GPXExporter.h>
#include <Pelluvia/system/MainThread.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <variant>

using namespace pelluvia;

namespace {

void complain(const std::string &file, const std::string &reason) {
    std::cerr << file << ": " << reason << '\n';
}

/// Whom the exporter tells what happened. Its messages run inside `mainThread::drain`, in order,
/// and never in the midst of the import.
class Observer {
  public:
    explicit Observer(std::string source) : source_(std::move(source)) {}

    /// Something is wrong with the source. The importer tells its receiver, and the exporter us.
    void failed(Report problem) {
        if (const auto *error = std::get_if<ErrorPtr>(&problem)) {
            complain(source_, (*error)->localizedDescription());
        }
        hasFailed_ = true;
    }
    /// The exporter has completed its file, also after a failure.
    // NOLINTNEXTLINE(performance-unnecessary-value-param): a message owns its argument
    void finished(std::shared_ptr<GPXExporter> exporter) {
        if (const std::error_code failure = exporter->writeFailure()) {
            complain("target", failure.message());
            hasFailed_ = true;
        }
    }
    [[nodiscard]] bool hasFailed() const { return hasFailed_; }

  private:
    std::string source_;
    bool hasFailed_ = false;
};

/// Writes what `source` holds to `target`; whether all of it was read and written.
bool convert(const std::string &source, const std::string &target) {
    const auto exporter = GPXExporter::initWithPath(target);
    if (exporter == nullptr) {
        complain(target, std::generic_category().message(errno));
        return false;
    }
    const auto observer = std::make_shared<Observer>(source);
    exporter->setErrorObject(observer, &Observer::failed);
    exporter->setCompletionObject(observer, &Observer::finished);

    // The import runs in this call and in this thread; the exporter writes as it goes.
    const auto importer = GPXFileImporter::initWithReceiver(exporter);
    const ErrorPtr error = importer->processFile(source);
    // The exchange is over only when the host says so: now the exporter completes its file.
    exporter->gpsStateChange(gpsState::finished);
    mainThread::drain();
    return error == nullptr && !observer->hasFailed();
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 3) {
        std::cerr << "usage: convert SOURCE.gpx TARGET.gpx\n";
        return EXIT_FAILURE;
    }
    const std::string target = argv[2];
    const std::string unfinished = target + ".part";
    std::error_code failure;
    if (!convert(argv[1], unfinished)) {
        std::filesystem::remove(unfinished, failure);
        return EXIT_FAILURE;
    }
    std::filesystem::rename(unfinished, target, failure);
    if (failure) {
        complain(target, failure.message());
        return EXIT_FAILURE;
    }
    std::cout << "converted\n";
    return EXIT_SUCCESS;
}
