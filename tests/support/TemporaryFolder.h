// SPDX-License-Identifier: MIT

#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace pelluvia::testing {

/// A new empty folder that is removed, with everything in it, at the end.
class TemporaryFolder {
  public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;
    ~TemporaryFolder();

    [[nodiscard]] const std::filesystem::path &path() const noexcept { return path_; }
    /// The path of an entry of the folder.
    [[nodiscard]] std::string file(std::string_view name) const;
    /// Writes a file into the folder and returns its path.
    std::string write(std::string_view name, std::string_view content) const;

  private:
    std::filesystem::path path_;
};

/// The content of a file; a failed expectation when it cannot be read.
[[nodiscard]] std::string readFile(const std::filesystem::path &path);
/// Writes a file.
void writeFile(const std::filesystem::path &path, std::string_view content);
/// The path of a file in tests/fixtures.
[[nodiscard]] std::string fixture(std::string_view name);
/// The folder of GPX files and receiver logs from elsewhere, or an empty path where it is not
/// there.
[[nodiscard]] std::filesystem::path corpusFolder();

} // namespace pelluvia::testing
