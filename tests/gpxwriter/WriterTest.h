// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/gpxwriter/GPXWriter.h>
#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/GPXNamespaces.h>

#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <tests/support/TemporaryFolder.h>
#include <utility>

namespace pelluvia {

/// What only the writing of the document's end adds.
inline const std::string documentEnd = "</gpx>\n";

/// A document without a header in a temporary folder, and what has been written to it.
class WriterTest : public ::testing::Test {
  protected:
    void SetUp() override {
        document = GPXCreate(path.c_str());
        ASSERT_NE(document, nullptr);
    }

    void TearDown() override {
        if (document != nullptr) {
            GPXClose(document);
        }
    }

    /// All that was written so far.
    std::string written() {
        document->file->flush();
        return testing::readFile(path);
    }

    /// What was written since the last call.
    std::string newlyWritten() {
        std::string text = written().substr(seen_);
        seen_ += text.size();
        return text;
    }

    /// All that was written, with what closing adds.
    std::string closed() {
        GPXClose(std::exchange(document, nullptr));
        return testing::readFile(path);
    }

    testing::TemporaryFolder folder;
    std::string path = folder.file("out.gpx");
    GPXRef document = nullptr;

  private:
    std::size_t seen_ = 0;
};

/// A dictionary of one entry.
template <class Content>
Dictionary dictionaryOf(const Key &key, Content content) {
    Dictionary dictionary;
    dictionary.set(key, Value(content));
    return dictionary;
}

} // namespace pelluvia
