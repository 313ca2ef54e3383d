// SPDX-License-Identifier: MIT

#pragma once

#include <tools/pelluvia/commandline/Options.h>
#include <tools/pelluvia/terminal/ReportCollector.h>

#include <Pelluvia/model/GPXExporterProgress.h>
#include <Pelluvia/recording/RecordingGPSOutput.h>

#include <memory>
#include <string>
#include <system_error>

/// \file
/// The recorder between the producers and the target, where the user wants one. It takes all that
/// the sources hold; then it is replayed into the target as a whole.

namespace pelluvia::host {

/// A recorder as the options ask for it; null when they do not. `collector` is told of what
/// producers report, `progress`, which may be null, of points.
[[nodiscard]] std::shared_ptr<RecordingGPSOutput>
makeRecorder(const RecordingOptions &options, const std::shared_ptr<ReportCollector> &collector,
             const std::shared_ptr<GPXExporterProgress> &progress);

/// No source will follow: files the track and the route of a producer that did not end its
/// transfer, as one does that broke off, since nothing else is summed up and replayed.
void finishRecording(RecordingGPSOutput &recorder);

/// Writes the recorder's summary to a path (see `OutputFile::open`) as a JSON array of its entries.
/// The first failure, or none.
[[nodiscard]] std::error_code writeTelemetry(const RecordingGPSOutput &recorder,
                                             const std::string &path);

} // namespace pelluvia::host
