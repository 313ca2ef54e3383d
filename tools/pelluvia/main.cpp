// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commandline/CommandLine.h>
#include <tools/pelluvia/commandline/ExitStatus.h>
#include <tools/pelluvia/commands/Convert.h>
#include <tools/pelluvia/commands/Info.h>
#include <tools/pelluvia/commands/StorageHelper.h>
#include <tools/pelluvia/files/StandardOutput.h>
#include <tools/pelluvia/terminal/Messages.h>
#include <tools/pelluvia/terminal/Process.h>

#include <exception>
#include <new>
#include <string_view>
#include <unistd.h>
#include <variant>

namespace pelluvia::host {

namespace {

int run(const ConvertOptions &options) {
    if (options.verbose) {
        showLogLines();
    }
    return convert(options);
}

int run(const InfoOptions &options) {
    if (options.verbose) {
        showLogLines();
    }
    return info(options);
}

int run(const StorageOptions &options) {
    return becomeStorageHelper(options);
}

int run(const Answer &answer) {
    std::string_view complaint = answer.complaint;
    while (!complaint.empty()) {
        const std::size_t lineEnd = complaint.find('\n');
        say(complaint.substr(0, lineEnd));
        complaint.remove_prefix(lineEnd == std::string_view::npos ? complaint.size() : lineEnd + 1);
    }
    StandardOutput out;
    out.write(answer.output);
    return out.close() ? answer.status : exitStatus::cannotWrite;
}

} // namespace

} // namespace pelluvia::host

int main(int argc, char **argv) {
    using namespace pelluvia::host;
    try {
        prepareProcess();
        return std::visit([](const auto &command) { return run(command); },
                          parseCommandLine(argc, argv));
    } catch (const std::bad_alloc &) {
        complain("not enough memory");
    } catch (const std::exception &error) {
        complain(error.what());
    } catch (...) {
        complain("an unknown failure");
    }
    return exitStatus::badInput;
}
