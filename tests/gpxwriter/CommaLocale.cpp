// SPDX-License-Identifier: MIT

#include <tests/gpxwriter/CommaLocale.h>

#include <array>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

// The environment is changed in single-threaded tests only.
// NOLINTBEGIN(concurrency-mt-unsafe)

namespace pelluvia::testing {

namespace {

constexpr const char *localeName = "de_DE.UTF-8";

bool install() {
    return std::setlocale(LC_ALL, localeName) != nullptr;
}

} // namespace

CommaLocale::CommaLocale() {
    if (!install()) {
        const std::string command = "localedef --no-archive -i de_DE -f UTF-8 '" +
                                    folder_.file(localeName) + "' >/dev/null 2>&1";
        ::setenv("LOCPATH", folder_.path().c_str(), 1);
        if (std::system(command.c_str()) == 0) {
            install();
        }
    }
    ::setenv("TZ", "XYZ-13:37", 1);
    ::tzset();
}

CommaLocale::~CommaLocale() {
    std::setlocale(LC_ALL, "C");
    ::unsetenv("LOCPATH");
    ::unsetenv("TZ");
    ::tzset();
}

bool CommaLocale::isActive() const {
    std::array<char, 16> text;
    std::snprintf(text.data(), text.size(), "%.1f", 1.5);
    return std::string(text.data()) == "1,5";
}

} // namespace pelluvia::testing

// NOLINTEND(concurrency-mt-unsafe)
