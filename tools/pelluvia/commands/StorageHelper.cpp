// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commands/StorageHelper.h>

#include <tools/pelluvia/commandline/ExitStatus.h>
#include <tools/pelluvia/terminal/Messages.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace pelluvia::host {

namespace {

/// Where the helper lies, found from where this program lies, so that an installed tree can be
/// moved.
std::filesystem::path helperPath() {
    std::error_code error;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
    return (self.parent_path() / PELLUVIA_STORAGE_HELPER).lexically_normal();
}

} // namespace

int becomeStorageHelper(const StorageOptions &options) {
    const std::string helper = helperPath().string();
    std::string verbose = "--verbose";
    std::string end = "--";
    std::string command = options.isQuestion ? "authorized" : "authorize";
    std::string folder = options.folder;
    std::string name = "pelluvia";
    std::array<char *, 6> arguments{name.data(), command.data()};
    std::size_t count = 2;
    if (options.verbose) {
        arguments[count++] = verbose.data();
    }
    arguments[count++] = end.data();
    arguments[count] = folder.data();
    ::execv(helper.c_str(), arguments.data());
    const int error = errno;
    if (error == ENOENT) {
        complain(
            "the storage component, which keeps grants of folders, is not installed: there is no " +
            helper);
    } else {
        complain(helper + ": " + std::generic_category().message(error));
    }
    return exitStatus::badInput;
}

} // namespace pelluvia::host
