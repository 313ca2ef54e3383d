// SPDX-License-Identifier: MIT

#include <Pelluvia/storage/Bookmark.h>
#include <Pelluvia/storage/GPSStorageAuthorization.h>
#include <Pelluvia/storage/UserDefaults.h>
#include <Pelluvia/system/Log.h>

#include <csignal>
#include <cstdint>
#include <iostream>
#include <string>
#include <unistd.h>
#include <vector>

/// \file
/// Another process for the tests of the storage component:
///
///     storage_probe folder                     prints the folder of the standard user defaults
///     storage_probe set FOLDER KEY TEXT        sets a text, then prints what stands there
///     storage_probe write FOLDER PREFIX COUNT  sets PREFIX0, PREFIX1, ...; prints each number when
///                                              its entry is set
///     storage_probe bookmark DATA              prints the path that bookmark data stand for
///     storage_probe resolve APPLICATION PATH   prints the path that was granted
///
/// With --ordinary before it, what root may do beyond others it may not.

namespace {

using pelluvia::UserDefaults;

constexpr uid_t nobody = 65534;

int write(const UserDefaults &defaults, const std::string &prefix, long count) {
    for (long at = 0; at < count; ++at) {
        defaults.setObject(std::int64_t{at}, prefix + std::to_string(at));
        std::cout << at << std::endl; // each at once: the reader may be about to kill us
    }
    return 0;
}

int resolve(const std::string &application, const std::string &path) {
    UserDefaults::setApplicationIdentifier(application);
    const auto url = pelluvia::GPSStorageAuthorization::authorizedBookmarkURLForPath(path, nullptr);
    std::cout << (url ? url->path() : "nothing") << '\n';
    return url ? 0 : 1;
}

int bookmark(const std::string &text) {
    pelluvia::ErrorPtr error;
    const auto url = pelluvia::Bookmark::URLByResolvingBookmarkData(
        pelluvia::Data(text.begin(), text.end()), nullptr, &error);
    std::cout << (url ? url->path()
                      : "nothing: " + std::to_string(error->code()) + " " +
                            error->localizedDescription())
              << '\n';
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    // Writing beyond a limit is an error, as on a full disk, and not the end.
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
    pelluvia::setLogSink([](std::string_view line) { std::cerr << line << '\n'; });
    if (!arguments.empty() && arguments[0] == "--ordinary") {
        if (::geteuid() == 0 && ::setresuid(nobody, nobody, nobody) != 0) {
            return 3;
        }
        arguments.erase(arguments.begin());
    }
    if (arguments == std::vector<std::string>{"folder"}) {
        std::cout << UserDefaults::standardUserDefaults().folder() << '\n';
        return 0;
    }
    if (arguments.size() == 2 && arguments[0] == "bookmark") {
        return bookmark(arguments[1]);
    }
    if (arguments.size() == 3 && arguments[0] == "resolve") {
        return resolve(arguments[1], arguments[2]);
    }
    if (arguments.size() != 4) {
        return 2;
    }
    const UserDefaults defaults(arguments[1]);
    if (arguments[0] == "write") {
        return write(defaults, arguments[2], std::stol(arguments[3]));
    }
    defaults.setObject(arguments[3], arguments[2]);
    std::cout << defaults.stringForKey(arguments[2]).value_or("nothing") << '\n';
    return 0;
}
