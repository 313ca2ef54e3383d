// SPDX-License-Identifier: MIT

#pragma once

#include <tests/support/TemporaryFolder.h>

namespace pelluvia::testing {

/// Gives the process, for its own lifetime, a locale whose decimal point is a comma and whose
/// numbers have grouped digits, and a time zone far from UTC. Makes the locale where the system has
/// none. Afterwards the locale is "C". For single-threaded tests.
class CommaLocale {
  public:
    CommaLocale();
    CommaLocale(const CommaLocale &) = delete;
    CommaLocale &operator=(const CommaLocale &) = delete;
    ~CommaLocale();

    /// Whether there is such a locale: `printf` writes a comma now.
    [[nodiscard]] bool isActive() const;

  private:
    TemporaryFolder folder_;
};

} // namespace pelluvia::testing
