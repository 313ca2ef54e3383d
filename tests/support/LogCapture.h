// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/system/Log.h>

#include <string>
#include <string_view>
#include <vector>

namespace pelluvia::testing {

/// Takes the lines of the log while it lives. One at a time.
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
