#include <Pelluvia/platform/Log.h>

#include <algorithm>
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
};

Destination &destination() {
    static Destination instance;
    return instance;
}

bool isControl(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7F;
}

} // namespace

void logLine(std::string_view text) {
    std::string line(text);
    std::replace_if(line.begin(), line.end(), isControl, ' ');

    std::shared_ptr<const LogSink> sink;
    {
        const std::scoped_lock lock(destination().mutex);
        sink = destination().sink;
    }
    // Outside the lock: a sink may log, or replace itself.
    if (sink) {
        (*sink)(line);
    } else {
        syslog(LOG_USER | LOG_NOTICE, "%s", line.c_str());
    }
}

void setLogSink(LogSink sink) {
    auto replacement = sink ? std::make_shared<const LogSink>(std::move(sink)) : nullptr;
    const std::scoped_lock lock(destination().mutex);
    destination().sink = std::move(replacement);
}

} // namespace pelluvia
