// SPDX-License-Identifier: MIT

#include <Pelluvia/system/Log.h>

#include <memory>
#include <mutex>
#include <string>
#include <syslog.h>
#include <utility>

namespace pelluvia {

namespace {

/// Where the lines of this process go.
struct Destination {
    std::mutex mutex;
    std::shared_ptr<const LogSink> sink;

    std::shared_ptr<const LogSink> current() {
        const std::scoped_lock lock(mutex);
        return sink;
    }
};

/// Never destroyed: lines may be logged while the process ends.
Destination &destination() {
    static auto &instance = *new Destination; // NOLINT(cppcoreguidelines-owning-memory)
    return instance;
}

/// The length of the control character that `text` begins with, 0 when it begins with another:
/// one byte below U+0020 and for U+007F, two for U+0080 to U+009F.
std::size_t controlLength(std::string_view text) {
    const auto byte = static_cast<unsigned char>(text[0]);
    if (byte < 0x20 || byte == 0x7F) {
        return 1;
    }
    if (byte == 0xC2 && text.size() > 1) {
        const auto next = static_cast<unsigned char>(text[1]);
        return next >= 0x80 && next <= 0x9F ? 2 : 0;
    }
    return 0;
}

std::string singleLine(std::string_view text) {
    std::string line;
    line.reserve(text.size());
    while (!text.empty()) {
        const std::size_t control = controlLength(text);
        line += control != 0 ? ' ' : text[0];
        text.remove_prefix(control != 0 ? control : 1);
    }
    return line;
}

} // namespace

void logLine(std::string_view text) noexcept {
    try {
        const std::string line = singleLine(text);
        // Called outside the lock: a sink may log, or replace itself.
        if (const auto sink = destination().current()) {
            (*sink)(line);
        } else {
            syslog(LOG_USER | LOG_NOTICE, "%s", line.c_str());
        }
    } catch (...) { // NOLINT(bugprone-empty-catch)
        // The line is lost, not the work of whoever had something to say about it.
    }
}

void setLogSink(LogSink sink) {
    auto replacement = sink ? std::make_shared<const LogSink>(std::move(sink)) : nullptr;
    const std::scoped_lock lock(destination().mutex);
    // The old sink goes with `replacement`, behind the lock: what it owned may log.
    destination().sink.swap(replacement);
}

} // namespace pelluvia
