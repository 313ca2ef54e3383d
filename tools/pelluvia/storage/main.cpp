// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commandline/ExitStatus.h>
#include <tools/pelluvia/files/StandardOutput.h>
#include <tools/pelluvia/terminal/Messages.h>
#include <tools/pelluvia/terminal/Process.h>

#include <Pelluvia/storage/GPSStorageAuthorization.h>
#include <Pelluvia/storage/UserDefaults.h>
#include <Pelluvia/system/Log.h>
#include <Pelluvia/values/CocoaErrors.h>

#include <exception>
#include <glib.h>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

/// \file
/// The program behind `pelluvia authorize` and `pelluvia authorized`, which are its only callers:
///
///     pelluvia-storage authorize|authorized [--verbose] -- FOLDER

namespace pelluvia::host {

namespace {

/// Writes the granted folder's URL as a line to standard output.
int printURL(const URL &folder) {
    const std::unique_ptr<gchar, decltype(&g_free)> uri(
        g_filename_to_uri(folder.path().c_str(), nullptr, nullptr), g_free);
    StandardOutput out;
    out.write(uri != nullptr ? uri.get() : folder.path());
    out.write("\n");
    return out.close() ? exitStatus::done : exitStatus::cannotWrite;
}

/// Says what is wrong with the file that holds the grants, if anything is.
class DefaultsFault {
  public:
    DefaultsFault() : text_(UserDefaults::standardUserDefaults().fault()) {
        if (!text_.empty()) {
            complain(text_);
        }
    }

    /// The status of a command that has done all else.
    [[nodiscard]] int statusAfter(int status) const noexcept {
        return status == exitStatus::done && !text_.empty() ? exitStatus::badInput : status;
    }

  private:
    std::string text_;
};

/// How a prompt ended.
struct Outcome {
    ErrorPtr error;
    std::error_code keeping;
};

/// Shows the prompt and runs the main loop until it has ended.
Outcome ask(const std::string &folder) {
    const std::unique_ptr<GMainLoop, decltype(&g_main_loop_unref)> loop(
        g_main_loop_new(nullptr, FALSE), g_main_loop_unref);
    Outcome outcome;
    GPSStorageAuthorization::authorizePathAndReport(
        folder, "", [&](const ErrorPtr &error, std::error_code keeping) {
            outcome = {error, keeping};
            g_main_loop_quit(loop.get());
        });
    g_main_loop_run(loop.get());
    return outcome;
}

int authorize(const std::string &folder) {
    const Outcome outcome = ask(folder);
    if (outcome.error != nullptr) {
        const bool isCancelled = outcome.error->domain() == NSCocoaErrorDomain &&
                                 outcome.error->code() == userCanceledPanel;
        complain("no folder was granted for " + folder + ": " +
                 (isCancelled ? "cancelled" : outcome.error->localizedDescription()));
        return exitStatus::badInput;
    }
    if (outcome.keeping) {
        complain("the grant could not be kept in " + UserDefaults::standardUserDefaults().folder() +
                 ": " + outcome.keeping.message());
        return exitStatus::cannotWrite;
    }
    const auto granted = GPSStorageAuthorization::authorizedBookmarkURLForPath(folder, nullptr);
    if (!granted) {
        complain("the folder that was granted is gone again");
        return exitStatus::badInput;
    }
    return printURL(*granted);
}

int authorized(const std::string &folder, bool isVerbose) {
    const auto granted = GPSStorageAuthorization::authorizedBookmarkURLForPath(folder, nullptr);
    if (!granted) {
        complain("there is no grant for " + folder + (isVerbose ? "" : " (--verbose says why)"));
        return exitStatus::badInput;
    }
    return printURL(*granted);
}

int run(std::vector<std::string> arguments) {
    const bool isVerbose = arguments.size() > 1 && arguments[1] == "--verbose";
    if (isVerbose) {
        arguments.erase(arguments.begin() + 1);
    }
    const bool isQuestion = !arguments.empty() && arguments[0] == "authorized";
    const bool isPrompt = !arguments.empty() && arguments[0] == "authorize";
    if (arguments.size() != 3 || arguments[1] != "--" || (!isQuestion && !isPrompt)) {
        complain("this program is a part of pelluvia; try: pelluvia authorize --help");
        return exitStatus::wrongUsage;
    }
    UserDefaults::setApplicationIdentifier("pelluvia");
    if (isVerbose) {
        showLogLines();
    } else {
        setLogSink([](std::string_view /*line*/) {}); // the answers say it
    }
    const DefaultsFault fault;
    return fault.statusAfter(isQuestion ? authorized(arguments[2], isVerbose)
                                        : authorize(arguments[2]));
}

} // namespace

} // namespace pelluvia::host

int main(int argc, char **argv) {
    using namespace pelluvia::host;
    try {
        prepareProcess();
        return run(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
    } catch (const std::exception &error) {
        complain(error.what());
    }
    return exitStatus::badInput;
}
