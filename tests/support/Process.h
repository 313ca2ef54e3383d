// SPDX-License-Identifier: MIT

#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace pelluvia::testing {

/// How a program is run.
struct Run {
    std::vector<std::string> arguments;
    /// What it reads on standard input, through a pipe.
    std::string input = {};
    /// Names and values, in place of what the tests have under those names.
    std::vector<std::pair<std::string, std::string>> environment = {};
    /// The working directory; empty for that of the tests.
    std::string folder = {};
    /// The most bytes of a file that it may write.
    std::optional<unsigned long> fileSizeLimit = std::nullopt;
    /// A file that standard output goes to; it is appended to. Empty: it is kept for the test.
    std::string outputFile = {};
    /// Standard output is a pipe that nobody reads.
    bool hasBrokenOutput = false;
    /// Descriptors that are closed when the program starts.
    std::vector<int> closed = {};
    /// Standard error is a terminal.
    bool hasTerminal = false;
};

/// What became of it.
struct Outcome {
    int status = -1; ///< the exit status; of a program that a signal ended, minus its number
    std::string output;
    std::string errors;
};

/// Runs a program to its end.
[[nodiscard]] Outcome run(const std::string &program, const Run &how);

} // namespace pelluvia::testing
