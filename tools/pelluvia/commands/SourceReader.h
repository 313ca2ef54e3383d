// SPDX-License-Identifier: MIT

#pragma once

#include <tools/pelluvia/commandline/Options.h>
#include <tools/pelluvia/files/InputFault.h>
#include <tools/pelluvia/terminal/ProgressBar.h>
#include <tools/pelluvia/terminal/ReportCollector.h>

#include <Pelluvia/model/GPSOutputReceiver.h>

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <utility>

namespace pelluvia::host {

class CallFilter;

/// Reads the sources of a conversion, each with the producer of its format, into a receiver, and
/// says on standard error what was found in them.
///
/// Threads: as for the receiver.
class SourceReader {
  public:
    /// What a reader works with.
    struct Surroundings {
        std::shared_ptr<GPSOutputReceiver> receiver;
        /// What is told of what the producers report; the receiver's error target.
        std::shared_ptr<ReportCollector> collector;
        /// Null for none.
        std::shared_ptr<ProgressBar> bar;
        /// Whether the receiver has no use for more.
        std::function<bool()> hasFailed;
        /// Stops what is read, and what is written in vain.
        std::stop_token stop;
        /// Called when a live source has nothing to read at the moment; null for none.
        std::function<void()> sourcePaused = {};
        /// Becomes readable when a live source is to end; -1 for none.
        int interrupts = -1;
    };

    /// The options are borrowed.
    SourceReader(const ConvertOptions &options, Surroundings surroundings)
        : options_(options), with_(std::move(surroundings)) {}

    /// Reads one source to its end. Why that was not possible, or nothing; that a live source was
    /// ended, or that nobody had use for more, is no fault.
    [[nodiscard]] std::optional<InputFault> read(const Source &source);

  private:
    [[nodiscard]] std::optional<InputFault> importGPX(const std::string &path);
    [[nodiscard]] std::optional<InputFault> readCallLog(const std::string &path);
    [[nodiscard]] std::optional<InputFault> readNMEA(const std::string &path);
    [[nodiscard]] std::shared_ptr<CallFilter> filtered() const;
    [[nodiscard]] std::optional<InputFault> faultOfStop() const;
    void sayWhatWasReported(const std::string &path);

    const ConvertOptions &options_;
    Surroundings with_;
};

} // namespace pelluvia::host
