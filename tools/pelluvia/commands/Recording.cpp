// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commands/Recording.h>

#include <Pelluvia/formats/calllog/JSONText.h>

#include <Pelluvia/model/TransferKind.h>
#include <Pelluvia/system/OutputFile.h>

#include <string_view>

namespace pelluvia::host {

std::shared_ptr<RecordingGPSOutput>
makeRecorder(const RecordingOptions &options, const std::shared_ptr<ReportCollector> &collector,
             const std::shared_ptr<GPXExporterProgress> &progress) {
    if (!options.isWanted) {
        return nullptr;
    }
    auto recorder = RecordingGPSOutput::recorder();
    recorder->setMinimizeTracks(options.minimize);
    if (options.pointSlop) {
        recorder->setPointEqualSlop(*options.pointSlop);
    }
    if (options.slopeSlop) {
        recorder->setSlopeEqualSlop(*options.slopeSlop);
    }
    recorder->setErrorObject(collector, &ReportCollector::take);
    recorder->setProgress(progress);
    return recorder;
}

void finishRecording(RecordingGPSOutput &recorder) {
    if (recorder.currentRoute() != nullptr) {
        recorder.endTransfer(transferKind::routes);
    }
    if (recorder.currentTrack() != nullptr) {
        recorder.endTransfer(transferKind::tracks);
    }
}

std::error_code writeTelemetry(const RecordingGPSOutput &recorder, const std::string &path) {
    std::error_code error;
    const auto file = OutputFile::open(path, error);
    if (file == nullptr) {
        return error;
    }
    const Ref<Array> telemetry = recorder.processingTelemetry();
    JSONText text(*file);
    std::string_view separator = "[\n";
    for (const Value &value : *telemetry) {
        const Dictionary &entry = *value.dictionary();
        text.raw(separator);
        text.raw(R"(  {"name":)");
        text.string(entry.string(Key::known("name")).value_or(""));
        text.raw(R"(,"value":)");
        text.integer(entry.number(Key::known("value"))->int64Value());
        text.raw("}");
        separator = ",\n";
    }
    text.raw("\n]\n");
    return file->close();
}

} // namespace pelluvia::host
