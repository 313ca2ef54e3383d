// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commandline/CommandLine.h>

#include <Pelluvia/formats/nmea/NMEADriver.h>
#include <tools/pelluvia/commandline/CommandTexts.h>
#include <tools/pelluvia/commandline/CreatorText.h>
#include <tools/pelluvia/commandline/ExitStatus.h>
#include <tools/pelluvia/commandline/OptionValues.h>
#include <tools/pelluvia/files/FileFormats.h>
#include <tools/pelluvia/files/TargetFile.h>
#include <tools/pelluvia/terminal/Messages.h>

#include <Pelluvia/model/Version.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <span>
#include <sstream>
#include <string_view>
#include <utility>

namespace pelluvia::host {

namespace {

constexpr int helpColumn = 34;

/// What CLI11 puts the arguments of all commands into.
struct Arguments {
    std::string from;
    std::string to;
    std::optional<std::string> only;
    std::optional<std::string> date;
    std::optional<std::string> baud;
    std::optional<std::string> gap;
    std::string creator;
    bool record = false;
    bool minimize = false;
    std::optional<std::string> pointSlop;
    std::optional<std::string> slopeSlop;
    std::optional<std::string> telemetry;
    bool classic = false;
    bool force = false;
    bool sync = false;
    bool quiet = false;
    bool json = false;
    bool verbose = false;
    std::vector<std::string> files;
};

/// Prints our own usage lines, which say more than the ones that can be made from the options.
class UsageFormatter : public CLI::Formatter {
  public:
    std::string make_usage(const CLI::App *app, std::string /*name*/) const override {
        return "Usage: " + std::string(usageOf(app->get_name())) + "\n";
    }
};

std::string versionText() {
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(),
                                   PelluviaVersionNumber, std::chars_format::fixed, 1);
    return "pelluvia " + std::string(digits.data(), end.ptr);
}

/// What the options of receivers say.
NMEAOptions driverOptions(const Arguments &arguments) {
    NMEAOptions options;
    options.baud = static_cast<long>(wholeNumberOf(arguments.baud, "--baud", options.baud));
    options.longestGap = wholeNumberOf(arguments.gap, "--gap", options.longestGap);
    if (!NMEADriver::isBaudRate(options.baud)) {
        throw CLI::ValidationError("--baud", "there is no such rate of serial lines");
    }
    if (arguments.date) {
        options.day = NMEADriver::dayOf(*arguments.date);
        if (!options.day) {
            throw CLI::ValidationError("--date", "a day since 1970 as YYYY-MM-DD is needed");
        }
    }
    return options;
}

/// What the options of the recorder say; each of them asks for it.
RecordingOptions recordingOptions(const Arguments &arguments, const std::vector<Source> &sources,
                                  const std::string &target) {
    RecordingOptions options;
    options.pointSlop = toleranceOf(arguments.pointSlop, "--point-slop");
    options.slopeSlop = toleranceOf(arguments.slopeSlop, "--slope-slop");
    options.minimize = arguments.minimize || options.pointSlop || options.slopeSlop;
    options.telemetry = arguments.telemetry;
    options.isWanted = arguments.record || options.minimize || options.telemetry;
    if (options.isWanted && arguments.classic) {
        throw CLI::ValidationError("--classic", "there is nothing between that could record");
    }
    if (options.telemetry && TargetFile::isSamePlace(*options.telemetry, target)) {
        throw CLI::ValidationError("--telemetry", "the target is written there");
    }
    // A target may be one of its sources: it is their conversion. A summary would only destroy it.
    const auto isTelemetry = [&](const Source &source) {
        return source.path != "-" && TargetFile::isSamePlace(*options.telemetry, source.path);
    };
    if (options.telemetry && std::any_of(sources.begin(), sources.end(), isTelemetry)) {
        throw CLI::ValidationError("--telemetry", "a source is read there");
    }
    return options;
}

void refuseSecondStandardInput(const std::vector<std::string> &paths) {
    if (std::count(paths.begin(), paths.end(), "-") > 1) {
        throw CLI::ValidationError("-", "standard input can be read only once");
    }
}

ConvertOptions convertOptions(const Arguments &arguments) {
    if (arguments.files.size() < 2) {
        throw CLI::RequiredError("TARGET");
    }
    ConvertOptions options;
    std::vector<std::string> sources = arguments.files;
    options.target = sources.back();
    sources.pop_back();
    refuseSecondStandardInput(sources);
    for (const std::string &path : sources) {
        options.sources.push_back({path, sourceFormat(path, arguments.from)});
    }
    options.targetFormat = targetFormat(options.target, arguments.to);
    options.nmea = driverOptions(arguments);
    options.recording = recordingOptions(arguments, options.sources, options.target);
    if (arguments.only) {
        options.only = selectionOf(*arguments.only);
    }
    const auto creator = attributeText(arguments.creator);
    if (!creator) {
        throw CLI::ValidationError("--creator",
                                   "the text must be UTF-8 without control characters");
    }
    options.creator = *creator;
    options.force = arguments.force;
    options.sync = arguments.sync;
    options.quiet = arguments.quiet;
    options.verbose = arguments.verbose;
    return options;
}

InfoOptions infoOptions(const Arguments &arguments) {
    refuseSecondStandardInput(arguments.files);
    InfoOptions options{.sources = {}, .json = arguments.json, .verbose = arguments.verbose};
    for (const std::string &path : arguments.files) {
        options.sources.push_back({path, shownFormat(path, arguments.from)});
    }
    return options;
}

/// Adds an option that takes no value. CLI11 would read one behind a "=", and take a flag of 0 or
/// of a negative number back.
void addFlag(CLI::App &command, const char *name, bool &flag, const char *description) {
    command.add_flag(name, flag, description)
        ->check(CLI::Validator(
            [](const std::string &value) {
                return value == "true" ? std::string() : "no value is taken";
            },
            ""));
}

/// The words of the command line. Of the commands that are not among them, nothing is needed but
/// name and description.
using Words = std::span<const char *const>;

bool isAmong(const Words &words, std::string_view name) {
    return std::find(words.begin(), words.end(), name) != words.end();
}

CLI::ValidationError noSuchOption(const std::string &word) {
    return CLI::ValidationError("there is no option \"" + word + "\"; a file of that name is ./" +
                                word);
}

/// To CLI11, a dash and a digit begin a number and no option, so it takes them for a file.
void refuseNumbers(const std::vector<std::string> &files, const Words &words) {
    if (isAmong(words, "--")) {
        return; // files behind it may have any name
    }
    for (const std::string &file : files) {
        if (file.size() > 1 && file.front() == '-') {
            throw noSuchOption(file);
        }
    }
}

void addRecording(CLI::App &command, Arguments &arguments) {
    addFlag(command, "--record", arguments.record, "Record all first, then replay it");
    addFlag(command, "--minimize", arguments.minimize, "Thin tracks while recording");
    command
        .add_option("--point-slop", arguments.pointSlop,
                    "Thin: points as near as this are one (0.0001)")
        ->option_text("DEGREES");
    command
        .add_option("--slope-slop", arguments.slopeSlop,
                    "Thin: slopes as near as this are one (0.01)")
        ->option_text("NUMBER");
    command
        .add_option("--telemetry", arguments.telemetry,
                    "Record, and write a JSON summary; - prints it")
        ->option_text("FILE");
}

/// At least one path, and as many as there are. CLI11 must not be told that there may be more than
/// are needed: it would take a path [a,b] for a list of two, and none behind "--".
void takePathsAsTheyAre(CLI::Option &paths) {
    constexpr int many = CLI::detail::expected_max_vector_size;
    paths.required()
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->expected(many, many)
        ->allow_extra_args(false);
}

void addFrom(CLI::App &command, Arguments &arguments, const char *description) {
    command.add_option("--from", arguments.from, description)
        ->option_text("gpx|calls|nmea")
        ->check(CLI::IsMember({"gpx", "calls", "nmea"}));
}

CLI::App *addConvert(CLI::App &app, Arguments &arguments, const Words &words) {
    CLI::App *command = app.add_subcommand("convert", "Convert GPX files, NMEA logs and call logs");
    if (!isAmong(words, "convert")) {
        return command;
    }
    command->footer(std::string(convertFooter));
    addFrom(*command, arguments, "Format of the sources, whatever their names");
    command->add_option("--to", arguments.to, "Format of the target, whatever its name")
        ->option_text("gpx|calls|nmea")
        ->check(CLI::IsMember({"gpx", "calls", "nmea"}));
    command->add_option("--only", arguments.only, "Convert only these kinds of transfers")
        ->option_text("tracks,routes,waypoints");
    command->add_option("--baud", arguments.baud, "Speed of a serial device (4800)")
        ->option_text("RATE");
    command->add_option("--date", arguments.date, "First date of an NMEA log that tells none")
        ->option_text("YYYY-MM-DD");
    command->add_option("--gap", arguments.gap, "Break NMEA tracks after so long a pause (300)")
        ->option_text("SECONDS");
    addRecording(*command, arguments);
    addFlag(*command, "--classic", arguments.classic, "No recorder between source and target");
    command->add_option("--creator", arguments.creator, "The creator named in a GPX header")
        ->option_text("TEXT");
    addFlag(*command, "--force", arguments.force, "Replace files that are there");
    addFlag(*command, "--sync", arguments.sync, "Wait until the disk has the result");
    addFlag(*command, "-q,--quiet", arguments.quiet, "No progress bar");
    addFlag(*command, "-v,--verbose", arguments.verbose,
            "Log to standard error, not to the system log");
    CLI::Option *files = command
                             ->add_option("SOURCE... TARGET", arguments.files,
                                          "Files; - is standard input or output")
                             ->option_text(" ");
    takePathsAsTheyAre(*files);
    return command;
}

CLI::App *addInfo(CLI::App &app, Arguments &arguments, const Words &words) {
    CLI::App *command = app.add_subcommand("info", "Show what files hold");
    if (!isAmong(words, "info")) {
        return command;
    }
    command->footer(std::string(infoFooter));
    addFrom(*command, arguments, "Format of the files, whatever their names");
    addFlag(*command, "--json", arguments.json, "One JSON object a file, each on a line");
    addFlag(*command, "-v,--verbose", arguments.verbose,
            "Log to standard error, not to the system log");
    CLI::Option *files = command->add_option("FILE", arguments.files, "Files; - is standard input")
                             ->option_text("...");
    takePathsAsTheyAre(*files);
    return command;
}

CLI::App *addStorage(CLI::App &app, Arguments &arguments, const Words &words, const char *name,
                     const char *description) {
    CLI::App *command = app.add_subcommand(name, description);
    if (!isAmong(words, name)) {
        return command;
    }
    command->footer(
        std::string(name == std::string_view("authorize") ? authorizeFooter : authorizedFooter));
    addFlag(*command, "-v,--verbose", arguments.verbose,
            "Log to standard error, not to the system log");
    command->add_option("FOLDER", arguments.files,
                        "The folder's path, always spelled the same")
        ->option_text(" ")
        ->required()
        ->expected(1)
        ->allow_extra_args(false); // or [a,b] would be two
    return command;
}

StorageOptions storageOptions(const Arguments &arguments, bool isQuestion) {
    return {
        .folder = arguments.files.front(), .isQuestion = isQuestion, .verbose = arguments.verbose};
}

/// A complaint about the usage of the command that was named, or of the program. The message may
/// quote arguments, whose line ends are not ours.
Answer complaintOf(const CLI::App &app, const std::string &message) {
    const auto named = app.get_subcommands();
    const std::string command = named.empty() ? std::string() : named.back()->get_name();
    const std::string program = command.empty() ? "pelluvia" : "pelluvia " + command;
    return {.status = exitStatus::wrongUsage,
            .output = {},
            .complaint = "pelluvia: " + harmless(message) + "\nUsage: " +
                         std::string(usageOf(command.empty() ? "pelluvia" : command)) +
                         "\nTry: " + program + " --help\n"};
}

/// What a command line without a command, or a command without its files, lacks. An option that
/// nobody knows is the better answer: it may have been meant as the file.
std::string whatIsMissing(const CLI::App &app) {
    const auto named = app.get_subcommands();
    if (!named.empty()) {
        const std::vector<std::string> rest = named.back()->remaining();
        return rest.empty() ? missingFilesOf(named.back()->get_name())
                            : noSuchOption(rest.front()).what();
    }
    const std::vector<std::string> rest = app.remaining();
    return rest.empty() ? "a command is needed: convert, info, authorize or authorized"
                        : "there is no command or option \"" + rest.front() + "\"";
}

/// Help and the version, which CLI11 reports as exceptions of its own.
Answer answerOf(const CLI::App &app, const CLI::Success &request) {
    std::ostringstream output;
    app.exit(request, output, output);
    return {.status = exitStatus::done, .output = output.str(), .complaint = {}};
}

} // namespace

Command parseCommandLine(int argc, const char *const *argv) {
    Arguments arguments;
    CLI::App app("Moves GPS data between GPX files, NMEA receivers and call logs.", "pelluvia");
    app.formatter(std::make_shared<UsageFormatter>());
    app.get_formatter()->column_width(helpColumn);
    app.set_version_flag("--version", versionText(), "Print the version and exit");
    app.set_help_flag("-h,--help", "Print this help and exit");
    app.footer(std::string(programFooter));
    app.require_subcommand(1);
    const Words words(argv, static_cast<std::size_t>(std::max(argc, 0)));
    const CLI::App *convert = addConvert(app, arguments, words);
    const CLI::App *info = addInfo(app, arguments, words);
    addStorage(app, arguments, words, "authorize", "Ask for access to a folder");
    const CLI::App *authorized =
        addStorage(app, arguments, words, "authorized", "Show the folder that was granted");
    for (CLI::App *command : app.get_subcommands({})) { // before CLI11 looks for values elsewhere
        command->preparse_callback([words](std::size_t) { refuseMissingValues(words); });
    }
    try {
        app.parse(argc, argv);
        refuseNumbers(arguments.files, words);
        return *convert ? Command(convertOptions(arguments))
               : *info  ? Command(infoOptions(arguments))
                        : Command(storageOptions(arguments, static_cast<bool>(*authorized)));
    } catch (const CLI::Success &request) {
        return answerOf(app, request);
    } catch (const CLI::RequiredError &) {
        return complaintOf(app, whatIsMissing(app));
    } catch (const CLI::Error &error) {
        return complaintOf(app, error.what());
    }
}

} // namespace pelluvia::host
