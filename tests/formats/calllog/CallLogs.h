// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/formats/calllog/CallLogReader.h>
#include <Pelluvia/formats/calllog/CallLogWriter.h>

#include <tests/support/TemporaryFolder.h>

#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>

namespace pelluvia::testing {

/// A file in memory that holds a text, open for reading from its start.
class OpenText {
  public:
    explicit OpenText(std::string_view text) : descriptor_(::memfd_create("text", MFD_CLOEXEC)) {
        while (!text.empty()) {
            const ssize_t written = ::write(descriptor_, text.data(), text.size());
            if (written <= 0) {
                ADD_FAILURE() << "cannot write a file in memory";
                break;
            }
            text.remove_prefix(static_cast<std::size_t>(written));
        }
        ::lseek(descriptor_, 0, SEEK_SET);
    }
    OpenText(const OpenText &) = delete;
    OpenText &operator=(const OpenText &) = delete;
    ~OpenText() { ::close(descriptor_); }

    [[nodiscard]] int descriptor() const noexcept { return descriptor_; }

  private:
    int descriptor_;
};

/// Reads a log into a receiver.
[[nodiscard]] inline ErrorPtr readLog(std::string_view log, GPSOutputReceiver &receiver) {
    const OpenText file(log);
    return CallLogReader(receiver).processDescriptor(file.descriptor());
}

/// The log that a writer makes of the calls of `produce`.
[[nodiscard]] inline std::string
writtenLog(const std::function<void(CallLogWriter &writer)> &produce) {
    const TemporaryFolder folder;
    std::error_code error;
    const auto writer = CallLogWriter::initWithPath(folder.file("log.jsonl"), error);
    if (writer == nullptr) {
        ADD_FAILURE() << error.message();
        return {};
    }
    produce(*writer);
    EXPECT_FALSE(writer->close());
    return readFile(folder.file("log.jsonl"));
}

/// The log that a writer makes of the calls of a log that must be right.
[[nodiscard]] inline std::string rewrittenLog(std::string_view log) {
    return writtenLog([log](CallLogWriter &writer) {
        const ErrorPtr fault = readLog(log, writer);
        EXPECT_EQ(fault, nullptr) << "line " << fault->integer(callLogErrorLine) << ": "
                                  << fault->localizedDescription();
    });
}

} // namespace pelluvia::testing
