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

/// Log lines of the prompt, which tell what its outcome does not: that a grant was not kept.
class PromptLog {
  public:
    explicit PromptLog(bool isShown) {
        setLogSink([this, isShown](std::string_view line) {
            if (isShown) {
                say("log: " + std::string(line));
            } else {
                lines_.emplace_back(line);
            }
            couldWrite_ = couldWrite_ && !line.starts_with("Error writing");
        });
    }
    PromptLog(const PromptLog &) = delete;
    PromptLog &operator=(const PromptLog &) = delete;
    ~PromptLog() { setLogSink({}); }

    [[nodiscard]] bool couldWrite() const noexcept { return couldWrite_; }
    void complainOfAll() const {
        for (const std::string &line : lines_) {
            complain(line);
        }
    }

  private:
    std::vector<std::string> lines_;
    bool couldWrite_ = true;
};

/// Shows the prompt and runs the main loop until it has ended.
ErrorPtr ask(const std::string &folder) {
    const std::unique_ptr<GMainLoop, decltype(&g_main_loop_unref)> loop(
        g_main_loop_new(nullptr, FALSE), g_main_loop_unref);
    ErrorPtr outcome;
    GPSStorageAuthorization::authorizePath(folder, "", [&](const ErrorPtr &error) {
        outcome = error;
        g_main_loop_quit(loop.get());
    });
    g_main_loop_run(loop.get());
    return outcome;
}

int authorize(const std::string &folder, bool isVerbose) {
    const PromptLog log(isVerbose);
    const ErrorPtr error = ask(folder);
    if (error != nullptr) {
        const bool isCancelled =
            error->domain() == NSCocoaErrorDomain && error->code() == userCanceledPanel;
        complain("no folder was granted for " + folder + ": " +
                 (isCancelled ? "cancelled" : error->localizedDescription()));
        return exitStatus::badInput;
    }
    const auto granted = GPSStorageAuthorization::authorizedBookmarkURLForPath(folder, nullptr);
    if (!granted || !log.couldWrite()) {
        log.complainOfAll();
        complain("the grant could not be kept");
        return exitStatus::cannotWrite;
    }
    return printURL(*granted);
}

int authorized(const std::string &folder, bool isVerbose) {
    if (isVerbose) {
        showLogLines();
    } else {
        setLogSink([](std::string_view /*line*/) {}); // the answer says it
    }
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
    UserDefaults::setApplicationIdentifier("pelluvia");
    if (arguments.size() == 3 && arguments[1] == "--") {
        if (arguments[0] == "authorize") {
            return authorize(arguments[2], isVerbose);
        }
        if (arguments[0] == "authorized") {
            return authorized(arguments[2], isVerbose);
        }
    }
    complain("this program is a part of pelluvia; try: pelluvia authorize --help");
    return exitStatus::wrongUsage;
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
