// SPDX-License-Identifier: MIT

#include <tests/support/MadeLocale.h>

#include <clocale>
#include <cstdlib>

namespace pelluvia::testing {

// NOLINTBEGIN(concurrency-mt-unsafe): used while there is one thread

MadeLocale::MadeLocale(const std::string &charset) {
    const std::string name = "de_DE." + charset;
    // Without a caller's settings the tool's own messages are English, and none of them matters.
    const std::string command = "LC_ALL=C localedef -i de_DE -f " + charset + " '" +
                                folder_.file(name) + "' >'" + folder_.file("messages") + "' 2>&1";
    const bool isMade = std::system(command.c_str()) == 0; // NOLINT(cert-env33-c)
    ::setenv("LOCPATH", folder_.path().c_str(), 1);
    isInUse_ = isMade && std::setlocale(LC_ALL, name.c_str()) != nullptr;
}

MadeLocale::~MadeLocale() {
    std::setlocale(LC_ALL, "C");
    ::unsetenv("LOCPATH");
}

// NOLINTEND(concurrency-mt-unsafe)

} // namespace pelluvia::testing
