#pragma once

#include <Pelluvia/platform/Log.h>

#include <string>
#include <string_view>
#include <vector>

namespace pelluvia::testing {

/// Collects the lines that are logged while it lives, instead of the system log.
class LogCapture {
  public:
    LogCapture() {
        setLogSink([this](std::string_view line) { lines.emplace_back(line); });
    }
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;
    ~LogCapture() { setLogSink({}); }

    std::vector<std::string> lines;
};

} // namespace pelluvia::testing
