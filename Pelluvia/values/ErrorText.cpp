// SPDX-License-Identifier: MIT

#include <Pelluvia/values/ErrorText.h>

namespace pelluvia {

std::string logTextOf(const ErrorPtr &error) {
    if (error == nullptr) {
        return "(null)";
    }
    return "Error Domain=" + error->domain() + " Code=" + std::to_string(error->code()) + " \"" +
           error->localizedDescription() + "\"";
}

} // namespace pelluvia
