// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <tests/support/TemporaryFolder.h>
#include <vector>

namespace pelluvia::testing {

/// The GPX files of the project's own tests and, where they are there, those from elsewhere; always
/// in the same order.
[[nodiscard]] inline std::vector<std::filesystem::path> gpxFiles() {
    namespace fs = std::filesystem;
    std::vector<fs::path> folders = {fixture("gpximport"), fixture("gpxwriter"), fixture("tools")};
    if (const fs::path corpus = corpusFolder(); !corpus.empty()) {
        folders.push_back(corpus / "gpx");
    }
    std::vector<fs::path> files;
    for (const fs::path &folder : folders) {
        const auto begin = static_cast<std::ptrdiff_t>(files.size());
        for (const auto &entry : fs::directory_iterator(folder)) {
            if (entry.path().extension() == ".gpx") {
                files.push_back(entry.path());
            }
        }
        std::sort(files.begin() + begin, files.end());
    }
    return files;
}

} // namespace pelluvia::testing
