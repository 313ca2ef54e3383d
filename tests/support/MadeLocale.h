// SPDX-License-Identifier: MIT

#pragma once

#include <tests/support/TemporaryFolder.h>

#include <string>

namespace pelluvia::testing {

/// Puts the process into a German locale of its own making, whose decimal separator is a comma, and
/// back into the "C" locale at the end. No locale has to be installed for it, but the C library's
/// `localedef` and its sources.
///
/// Threads: none; use it while the test program has one thread.
class MadeLocale {
  public:
    /// `charset` is a name that `localedef` knows, for instance "UTF-8".
    explicit MadeLocale(const std::string &charset);
    MadeLocale(const MadeLocale &) = delete;
    MadeLocale &operator=(const MadeLocale &) = delete;
    ~MadeLocale();

    /// Whether the locale could be made and is in use; skip the test otherwise.
    [[nodiscard]] bool isInUse() const noexcept { return isInUse_; }

  private:
    TemporaryFolder folder_;
    bool isInUse_ = false;
};

} // namespace pelluvia::testing
