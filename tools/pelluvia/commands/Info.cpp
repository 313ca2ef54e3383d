#include <tools/pelluvia/commands/Info.h>

#include <tools/pelluvia/commandline/ExitStatus.h>
#include <tools/pelluvia/commands/FileSurvey.h>
#include <tools/pelluvia/commands/SurveyText.h>
#include <tools/pelluvia/files/InputFault.h>
#include <tools/pelluvia/files/SourceFile.h>
#include <tools/pelluvia/files/StandardOutput.h>
#include <tools/pelluvia/terminal/Messages.h>

#include <Pelluvia/xml/XMLParser.h>

#include <algorithm>
#include <string>

namespace pelluvia::host {

namespace {

/// Prints what one file holds.
int show(const std::string &path, bool asJSON, StandardOutput &out) {
    const std::string name = sourceName(path);
    RereadableSource source(path);
    std::error_code unreadable = whyUnreadable(path);
    if (!unreadable) {
        const auto failure = source.prepare();
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

    FileSurvey survey;
    const auto parser = XMLParser::initWithContentsOfURL(URL::fileURLWithPath(source.path()));
    parser->setDelegate(&survey);
    parser->setShouldResolveExternalEntities(true); // as an import does
    const bool isWhole = parser->parse();
    out.write(asJSON ? jsonText(path, survey, !isWhole) : tableText(name, survey, !isWhole));
    if (!isWhole) {
        say(InputFault::from(*parser->parserError(), "").text(name));
        complain("what was counted before that is partial");
        return exitStatus::badInput;
    }
    return exitStatus::done;
}

} // namespace

int info(const InfoOptions &options) {
    StandardOutput out;
    int status = exitStatus::done;
    for (const std::string &path : options.files) {
        status = std::max(status, show(path, options.json, out));
        out.flush();
    }
    return out.close() ? status : exitStatus::cannotWrite;
}

} // namespace pelluvia::host
