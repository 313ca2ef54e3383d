// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/Report.h>

#include <cstddef>
#include <string>
#include <vector>

namespace pelluvia::host {

/// The error target of receivers: keeps the texts of what is reported, the first few of them whole.
///
/// Threads: the main thread.
class ReportCollector {
  public:
    /// Takes a report.
    void take(Report report);

    /// The texts so far, at most `most`; forgets them.
    struct Texts {
        std::vector<std::string> texts;
        std::size_t more = 0; ///< so many others were reported
    };
    [[nodiscard]] Texts collected();

    /// So many texts are kept, and so many bytes of each; a log may report without end.
    static constexpr std::size_t most = 10;
    static constexpr std::size_t longestText = 1000;

  private:
    Texts collected_;
};

/// What an error says to the user: what went wrong, and what can be done about it.
[[nodiscard]] std::string textOf(const Error &error);

} // namespace pelluvia::host
