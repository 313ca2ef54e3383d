// SPDX-License-Identifier: MIT

#include <tests/support/TemporaryFolder.h>

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <stdexcept>

namespace pelluvia::testing {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
    std::string pattern = (fs::temp_directory_path() / "pelluvia-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("no temporary folder: " + pattern);
    }
    path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

std::string TemporaryFolder::file(std::string_view name) const {
    return (path_ / name).string();
}

std::string TemporaryFolder::write(std::string_view name, std::string_view content) const {
    writeFile(path_ / name, content);
    return file(name);
}

std::string readFile(const fs::path &path) {
    std::ifstream stream(path, std::ios::binary);
    EXPECT_TRUE(stream) << "cannot read " << path;
    std::ostringstream content;
    content << stream.rdbuf();
    return content.str();
}

void writeFile(const fs::path &path, std::string_view content) {
    std::ofstream stream(path, std::ios::binary);
    stream << content;
    ASSERT_TRUE(stream.flush()) << "cannot write " << path;
}

std::string fixture(std::string_view name) {
    return (fs::path(PELLUVIA_FIXTURES) / name).string();
}

fs::path corpusFolder() {
    // Read in a single-threaded test program.
    const char *configured = std::getenv("PELLUVIA_CORPUS"); // NOLINT(concurrency-mt-unsafe)
    const fs::path folder = configured != nullptr
                                ? fs::path(configured)
                                : fs::path(PELLUVIA_SOURCE_DIR) / ".." / "shared" / "corpus";
    return fs::is_directory(folder) ? folder : fs::path();
}

} // namespace pelluvia::testing
