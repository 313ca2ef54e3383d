// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/internal/Errors.h>

#include <Pelluvia/values/CocoaErrors.h>

#include <utility>

namespace pelluvia::formats {

ErrorPtr systemError(const std::error_code &error, std::string description,
                     const std::string &path) {
    ErrorInfo info{{std::string(NSLocalizedDescriptionKey), std::move(description)}};
    if (!path.empty()) {
        info.emplace_back(std::string(NSFilePathErrorKey), path);
    }
    return Error::make(posixErrorDomain, error.value(), std::move(info));
}

ErrorPtr stopError() {
    return Error::make(
        NSCocoaErrorDomain, NSUserCancelledError,
        {{std::string(NSLocalizedDescriptionKey), std::string("reading was stopped")}});
}

} // namespace pelluvia::formats
