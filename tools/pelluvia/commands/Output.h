// SPDX-License-Identifier: MIT

#pragma once

#include <tools/pelluvia/commandline/Options.h>
#include <tools/pelluvia/terminal/ReportCollector.h>

#include <Pelluvia/model/GPSOutputReceiver.h>
#include <Pelluvia/model/GPXExporterProgress.h>

#include <functional>
#include <memory>
#include <string>
#include <system_error>

namespace pelluvia::host {

/// A receiver that writes a document of one of the formats.
struct Output {
    /// Null when the document could not be opened.
    std::shared_ptr<GPSOutputReceiver> receiver;
    /// Ends and closes the document; no call may follow. The first failure of any write, or none.
    std::function<std::error_code()> finish;
    /// Writes what is held back, so that who reads along has all that is known.
    std::function<void()> flush;
    /// Whether a write has failed already, so that nothing more will come of this document.
    std::function<bool()> hasFailed;
    /// Why the document could not be opened.
    std::error_code openFailure;
    /// Asked after `finish`: what the format could not hold, in a line; empty when there is nothing
    /// to say. Null where there never is.
    std::function<std::string()> remark = {};

    /// Opens a document. `collector` is told of what producers report, `progress`, which may be
    /// null, of points.
    [[nodiscard]] static Output open(Format format, const std::string &path,
                                     const std::shared_ptr<ReportCollector> &collector,
                                     const std::shared_ptr<GPXExporterProgress> &progress);
};

} // namespace pelluvia::host
