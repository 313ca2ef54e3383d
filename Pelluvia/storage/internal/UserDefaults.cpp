// SPDX-License-Identifier: MIT

#include <Pelluvia/storage/UserDefaults.h>

#include <Pelluvia/storage/internal/DefaultsFile.h>
#include <Pelluvia/system/Log.h>

#include <cerrno>
#include <cstdlib>
#include <functional>
#include <glib.h>
#include <mutex>
#include <system_error>
#include <utility>

namespace pelluvia {

namespace {

/// What the host calls the application.
struct Identifier {
    std::mutex mutex;
    std::string text;
};

/// Never destroyed: defaults may be read while the process ends.
Identifier &identifier() {
    static auto &instance = *new Identifier; // NOLINT(cppcoreguidelines-owning-memory)
    return instance;
}

std::string applicationName() {
    const std::scoped_lock lock(identifier().mutex);
    if (!identifier().text.empty()) {
        return identifier().text;
    }
    const std::string program = program_invocation_short_name;
    return program.empty() ? "Pelluvia" : program;
}

/// Where the user's applications keep their settings. Asked for anew each time, not once as GLib's
/// function does, so that a host that sets the variable late is heard.
std::string configurationFolder() {
    const char *const set = std::getenv("XDG_CONFIG_HOME"); // NOLINT(concurrency-mt-unsafe)
    return set != nullptr && *set == '/' ? set : std::string(g_get_home_dir()) + "/.config";
}

// Problems are told when the file's lock has been let go: who takes the log's lines may use the
// defaults.
void tell(const std::string &problem) {
    if (!problem.empty()) {
        logLine(problem);
    }
}

std::error_code change(const std::string &folder,
                       const std::function<void(storage::DefaultsText &)> &how) {
    std::string problem;
    const int error = storage::DefaultsFile(folder).update(how, problem);
    tell(problem);
    return error != 0 ? std::error_code(error, std::generic_category()) : std::error_code();
}

template <class T>
std::optional<T> as(std::optional<DefaultsObject> object) {
    auto *const value = object ? std::get_if<T>(&*object) : nullptr;
    return value != nullptr ? std::optional<T>(std::move(*value)) : std::nullopt;
}

} // namespace

UserDefaults UserDefaults::standardUserDefaults() {
    return UserDefaults(configurationFolder() + "/" + applicationName());
}

bool UserDefaults::setApplicationIdentifier(std::string_view name) {
    if (name.empty() || name == "." || name == ".." ||
        name.find_first_of(std::string_view("/\0", 2)) != std::string_view::npos) {
        return false;
    }
    const std::scoped_lock lock(identifier().mutex);
    identifier().text = name;
    return true;
}

UserDefaults::UserDefaults(std::string folder) : folder_(std::move(folder)) {}

std::error_code UserDefaults::setObject(const DefaultsObject &object, std::string_view key) const {
    return change(folder_, [&](storage::DefaultsText &entries) { entries.set(key, object); });
}

std::error_code UserDefaults::removeObjectForKey(std::string_view key) const {
    return change(folder_, [&](storage::DefaultsText &entries) { entries.remove(key); });
}

std::string UserDefaults::fault() const {
    return storage::DefaultsFile(folder_).fault();
}

std::optional<DefaultsObject> UserDefaults::objectForKey(std::string_view key) const {
    std::string problem;
    const storage::DefaultsText entries = storage::DefaultsFile(folder_).read(problem);
    tell(problem);
    return entries.find(key);
}

std::optional<Data> UserDefaults::dataForKey(std::string_view key) const {
    return as<Data>(objectForKey(key));
}

std::optional<std::string> UserDefaults::stringForKey(std::string_view key) const {
    return as<std::string>(objectForKey(key));
}

std::optional<std::int64_t> UserDefaults::integerForKey(std::string_view key) const {
    return as<std::int64_t>(objectForKey(key));
}

std::optional<double> UserDefaults::doubleForKey(std::string_view key) const {
    return as<double>(objectForKey(key));
}

} // namespace pelluvia
