// SPDX-License-Identifier: MIT

// Feeds any bytes to the reader of call logs, from memory and from a file, and checks that both
// lead to the same calls and the same error, and that what a writer makes of the calls is a log
// that is read and written again as it is. See fuzz/README.md.

#include "Require.h"

#include <Pelluvia/formats/calllog/CallLogReader.h>
#include <Pelluvia/formats/calllog/CallLogWriter.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>

namespace {

using namespace pelluvia;
using fuzz::require;

/// What a log leads to.
struct Result {
    std::string written; ///< by a writer that got the calls
    std::string error;   ///< with its place; empty: none
};

std::string textOf(const ErrorPtr &error) {
    if (error == nullptr) {
        return {};
    }
    return std::to_string(error->integer(callLogErrorLine)) + ":" +
           std::to_string(error->integer(callLogErrorColumn)) + ": " +
           error->localizedDescription();
}

/// `process(reader)` reads the log.
template <class Process>
Result resultOf(Process process) {
    Result result;
    CallLogWriter writer(OutputFile::inMemory(result.written));
    CallLogReader reader(writer);
    const ErrorPtr error = process(reader);
    require(!writer.close(), "memory can be written");
    const ReadingProgress progress = reader.readingProgress();
    require(progress.size && progress.position <= *progress.size, "no more is read than there is");
    require(error != nullptr || progress.position == *progress.size, "a log is read to its end");
    require(error == nullptr || error->integer(callLogErrorLine) > 0, "an error has its line");
    result.error = textOf(error);
    return result;
}

Result readFromMemory(std::string_view log) {
    return resultOf([log](CallLogReader &reader) { return reader.processText(log); });
}

Result readFromFile(std::string_view log) {
    const int descriptor = ::memfd_create("log", MFD_CLOEXEC);
    require(::write(descriptor, log.data(), log.size()) == static_cast<ssize_t>(log.size()) &&
                ::lseek(descriptor, 0, SEEK_SET) == 0,
            "a file in memory can be written");
    Result result = resultOf(
        [descriptor](CallLogReader &reader) { return reader.processDescriptor(descriptor); });
    ::close(descriptor);
    return result;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string log(data, data + size); // so that a look behind it is seen
    [[maybe_unused]] const bool isLikely = looksLikeCallLog(log);
    const Result fromMemory = readFromMemory(log);
    const Result fromFile = readFromFile(log);
    require(fromMemory.written == fromFile.written, "memory and file lead to the same calls");
    require(fromMemory.error == fromFile.error, "and to the same error");

    const Result again = readFromMemory(fromMemory.written);
    require(again.error.empty(), "what was written can be read");
    require(again.written == fromMemory.written, "and is written again as it is");
    return 0;
}
