// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commands/Info.h>

#include <tools/pelluvia/commandline/ExitStatus.h>
#include <tools/pelluvia/commands/CallSurvey.h>
#include <tools/pelluvia/commands/FileSurvey.h>
#include <tools/pelluvia/commands/FormatHint.h>
#include <tools/pelluvia/commands/SourceReader.h>
#include <tools/pelluvia/commands/SurveyText.h>
#include <tools/pelluvia/files/InputFault.h>
#include <tools/pelluvia/files/SourceFile.h>
#include <tools/pelluvia/files/StandardOutput.h>
#include <tools/pelluvia/terminal/Messages.h>

#include <Pelluvia/xml/XMLParser.h>

#include <algorithm>
#include <optional>
#include <string>

namespace pelluvia::host {

namespace {

struct Surveyed {
    /// What the source holds, up to the fault in it; nothing where it has another format than asked
    /// for.
    std::optional<Survey> survey;
    std::optional<InputFault> fault;
};

Surveyed surveyGPX(const std::string &path) {
    FileSurvey survey;
    const auto parser = XMLParser::initWithContentsOfURL(URL::fileURLWithPath(path));
    parser->setDelegate(&survey);
    parser->setShouldResolveExternalEntities(true); // as an import does
    if (parser->parse()) {
        return {.survey = survey.survey(), .fault = std::nullopt};
    }
    if (const std::string hint = formatHint(path); !hint.empty()) {
        return {.survey = std::nullopt, .fault = InputFault{.message = hint}};
    }
    return {.survey = survey.survey(), .fault = InputFault::from(*parser->parserError(), "")};
}

/// Of other formats, what their producers make of them.
Surveyed surveyCalls(const Source &source) {
    const auto receiver = std::make_shared<CallSurvey>();
    const ConvertOptions options;
    SourceReader reader(options, {.receiver = receiver,
                                  .collector = std::make_shared<ReportCollector>(),
                                  .bar = nullptr,
                                  .hasFailed = [] { return false; },
                                  .stop = {}});
    auto fault = reader.read(source);
    return {.survey = receiver->survey(), .fault = std::move(fault)};
}

/// Prints what one file holds.
int show(const Source &source, bool asJSON, StandardOutput &out) {
    const std::string name = sourceName(source.path);
    RereadableSource rereadable(source.path);
    std::error_code unreadable = whyUnreadable(source.path);
    if (!unreadable && source.format == Format::GPX) {
        const auto failure = rereadable.prepare();
        if (failure.writing) {
            complain(name + ": cannot be kept in " + failure.folder +
                     " (see TMPDIR): " + failure.writing.message());
            return exitStatus::cannotWrite;
        }
        unreadable = failure.reading;
    }
    if (unreadable) {
        complain(name + ": " + unreadable.message());
        return exitStatus::badInput;
    }

    const auto [survey, fault] =
        source.format == Format::GPX ? surveyGPX(rereadable.path()) : surveyCalls(source);
    const bool isPartial = fault.has_value();
    if (survey) {
        out.write(asJSON ? jsonText(source.path, *survey, isPartial)
                         : tableText(name, *survey, isPartial));
    }
    if (fault) {
        say(fault->text(name));
    }
    if (survey && isPartial) {
        complain("what was counted before that is partial");
    }
    return fault ? fault->status : exitStatus::done;
}

} // namespace

int info(const InfoOptions &options) {
    StandardOutput out;
    int status = exitStatus::done;
    for (const Source &source : options.sources) {
        status = std::max(status, show(source, options.json, out));
        out.flush();
    }
    return out.close() ? status : exitStatus::cannotWrite;
}

} // namespace pelluvia::host
