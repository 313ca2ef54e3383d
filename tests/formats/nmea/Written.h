// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/formats/nmea/NMEAWriter.h>
#include <tests/support/TemporaryFolder.h>

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <system_error>

namespace pelluvia::testing {

/// A writer and what it wrote.
class Written {
  public:
    Written() {
        std::error_code error;
        writer = NMEAWriter::initWithPath(folder_.file("log.nmea"), error);
        EXPECT_NE(writer, nullptr) << error.message();
    }

    std::shared_ptr<NMEAWriter> writer;

    /// Closes the writer; the file's content.
    [[nodiscard]] std::string log() const {
        EXPECT_FALSE(writer->close());
        return readFile(folder_.file("log.nmea"));
    }

  private:
    TemporaryFolder folder_;
};

} // namespace pelluvia::testing
