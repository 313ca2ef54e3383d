// SPDX-License-Identifier: MIT

#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace pelluvia::testing {

/// The environment variable that chooses the XML engine: not set at first, and in the end what it
/// was before. For tests with one thread.
class XMLEngineVariable {
  public:
    XMLEngineVariable() {
        if (const char *value = std::getenv(name)) {
            before_ = value;
        }
        unset();
    }
    XMLEngineVariable(const XMLEngineVariable &) = delete;
    XMLEngineVariable &operator=(const XMLEngineVariable &) = delete;
    ~XMLEngineVariable() {
        if (before_) {
            set(before_->c_str());
        } else {
            unset();
        }
    }

    // NOLINTBEGIN(concurrency-mt-unsafe,readability-convert-member-functions-to-static)
    void set(const char *value) { ::setenv(name, value, 1); }
    void unset() { ::unsetenv(name); }
    // NOLINTEND(concurrency-mt-unsafe,readability-convert-member-functions-to-static)

  private:
    static constexpr const char *name = "PELLUVIA_XML_ENGINE";
    std::optional<std::string> before_;
};

} // namespace pelluvia::testing
