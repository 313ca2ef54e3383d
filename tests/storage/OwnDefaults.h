// SPDX-License-Identifier: MIT

#pragma once

#include <tests/support/LogCapture.h>
#include <tests/support/TemporaryFolder.h>

#include <Pelluvia/storage/UserDefaults.h>

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

namespace pelluvia::testing {

/// A test whose standard user defaults are in a folder of its own, and which sees the log.
class OwnDefaults : public ::testing::Test {
  protected:
    OwnDefaults() {
        ::setenv("XDG_CONFIG_HOME", folder.path().c_str(), 1); // NOLINT(concurrency-mt-unsafe)
        UserDefaults::setApplicationIdentifier("org.example.Test");
    }

    /// The path of an entry of the defaults' folder.
    [[nodiscard]] std::string defaultsFile(std::string_view name = "defaults.ini") const {
        return folder.file("org.example.Test/" + std::string(name));
    }

    TemporaryFolder folder;
    LogCapture log;
};

} // namespace pelluvia::testing
