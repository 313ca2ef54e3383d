// SPDX-License-Identifier: MIT

#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace pelluvia::testing {

/// A whole document that an exporter is made to write, and the name of its golden file.
struct SampleDocument {
    std::string_view name;
    void (*write)(const std::string &path);
};

/// Names the document in the messages of tests.
inline void PrintTo(const SampleDocument &sample, std::ostream *stream) {
    *stream << sample.name;
}

[[nodiscard]] std::vector<SampleDocument> sampleDocuments();

/// What `SampleDocument::write` writes to a new file.
[[nodiscard]] std::string textOf(const SampleDocument &sample);

} // namespace pelluvia::testing
