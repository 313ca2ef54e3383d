// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/gpximport/GPXFileImporter.h>
#include <Pelluvia/model/GPXNamespaces.h>
#include <tests/support/LogCapture.h>
#include <tests/support/SpyReceiver.h>
#include <tests/support/TemporaryFolder.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// \file
/// Imports of small documents, for tests that look at the calls.

namespace pelluvia::testing {

/// Which passes run.
struct Passes {
    bool routes = true;
    bool waypoints = true;
    bool tracks = true;
};

inline constexpr Passes onlyRoutes{true, false, false};
inline constexpr Passes onlyWaypoints{false, true, false};
inline constexpr Passes onlyTracks{false, false, true};

/// What came of an import.
struct Imported {
    std::vector<std::string> calls;
    ErrorPtr result;
    std::vector<std::string> log;

    /// The calls but for the starts and ends of transfers.
    [[nodiscard]] std::vector<std::string> data() const {
        std::vector<std::string> found;
        for (const std::string &each : calls) {
            if (!each.starts_with("startTransfer") && !each.starts_with("endTransfer")) {
                found.push_back(each);
            }
        }
        return found;
    }
};

/// An importer with its receiver.
struct Importing {
    std::shared_ptr<SpyReceiver> spy = std::make_shared<SpyReceiver>();
    std::shared_ptr<GPXFileImporter> importer = GPXFileImporter::initWithReceiver(spy);

    explicit Importing(Passes passes = {}) {
        importer->setDoRoutes(passes.routes);
        importer->setDoWaypoints(passes.waypoints);
        importer->setDoTracks(passes.tracks);
    }

    /// Imports a file; the calls are those since the last import.
    Imported file(const std::string &path) {
        const LogCapture log;
        spy->forget();
        ErrorPtr result = importer->processFile(path);
        return {spy->calls, std::move(result), log.lines};
    }

    /// Imports a document.
    Imported document(std::string_view xml) {
        const TemporaryFolder folder;
        return file(folder.write("document.gpx", xml));
    }
};

/// A GPX 1.1 document with the extensions' namespaces under their usual prefixes; `content` is
/// what stands in the root element.
[[nodiscard]] inline std::string gpx(std::string_view content) {
    return "<gpx version=\"1.1\" xmlns=\"" PELLUVIA_GPX11_NAMESPACE
           "\" xmlns:gpxx=\"" PELLUVIA_GPXX_NAMESPACE "\" xmlns:tpx=\"" PELLUVIA_GPXTPX1_NAMESPACE
           "\" xmlns:gs=\"" PELLUVIA_GEOCACHE_NAMESPACE
           "\" xmlns:gpxdata=\"" PELLUVIA_GPXDATA_NAMESPACE "\">" +
           std::string(content) + "</gpx>";
}

[[nodiscard]] inline Imported importGPX(std::string_view content, Passes passes = {}) {
    return Importing(passes).document(gpx(content));
}

} // namespace pelluvia::testing
