// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/system/OutputFile.h>

#include <memory>
#include <string_view>

namespace pelluvia::host {

/// Where results go that are read at once: standard output, whose failures are not passed over.
///
/// Threads: one at a time.
class StandardOutput {
  public:
    StandardOutput();

    void write(std::string_view text);
    void flush();
    /// Whether everything has been written; says on standard error why not.
    [[nodiscard]] bool close();

  private:
    std::error_code failure_;
    std::unique_ptr<OutputFile> file_; ///< null when there is no standard output
};

} // namespace pelluvia::host
