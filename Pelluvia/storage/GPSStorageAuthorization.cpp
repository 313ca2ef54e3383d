// SPDX-License-Identifier: MIT

#include <Pelluvia/storage/GPSStorageAuthorization.h>

#include <Pelluvia/model/ErrorDomains.h>
#include <Pelluvia/storage/Bookmark.h>
#include <Pelluvia/storage/OpenPanel.h>
#include <Pelluvia/storage/UserDefaults.h>
#include <Pelluvia/storage/internal/Grant.h>
#include <Pelluvia/system/Localization.h>
#include <Pelluvia/system/Log.h>
#include <Pelluvia/values/CocoaErrors.h>
#include <Pelluvia/values/ErrorText.h>

#include <memory>
#include <system_error>
#include <utility>

namespace pelluvia {

namespace {

/// The text is the host's to translate: it is looked up in the text domain of the main program.
std::pair<std::string, ErrorValue> description(std::string_view text) {
    constexpr const char *ofTheMainProgram = nullptr;
    return {std::string(NSLocalizedDescriptionKey), localized(text, ofTheMainProgram)};
}

ErrorPtr failure(ErrorInfo userInfo) {
    return Error::make(gpsPluginErrorDomain, gpsPluginFailure, std::move(userInfo));
}

/// The outcome of a panel that the user has left; a folder that was chosen is kept, or `keeping`
/// says why not.
ErrorPtr outcomeOf(const OpenPanel &panel, std::int64_t response, const std::string &path,
                   const std::string &receiver, std::error_code &keeping) {
    if (panel.error() != nullptr) {
        return panel.error();
    }
    if (response != modalResponse::ok || !panel.url()) {
        return Error::make(NSCocoaErrorDomain, userCanceledPanel);
    }
    ErrorPtr error;
    if (const auto data = Bookmark::bookmarkData(*panel.url(), &error)) {
        // Under the path that was asked for, wherever the user went from there.
        keeping = GPSStorageAuthorization::setAuthorizedBookmarkData(*data, path, receiver);
    } else {
        logLine("Error creating bookmark " + logTextOf(error));
    }
    return error;
}

} // namespace

Grant grantUnderKey(std::string_view key) {
    // Without an entry the data are empty, which resolve to an error like any other.
    const auto data = UserDefaults::standardUserDefaults().dataForKey(key);
    ErrorPtr reason;
    auto url = Bookmark::URLByResolvingBookmarkData(data.value_or(Data()), nullptr, &reason);
    if (url) {
        return {.url = std::move(url), .error = nullptr};
    }
    logLine("Error resolving bookmark: " + logTextOf(reason));
    // The text is the published one, its missing space included.
    return {.url = std::nullopt,
            .error = failure({description("Unable to Resolve bookmarkauthorization path"),
                              {std::string(NSUnderlyingErrorKey), reason}})};
}

std::optional<std::string>
GPSStorageAuthorization::authorizedBookmarkKeyForPath(std::optional<std::string_view> path,
                                                      std::string_view receiver) {
    return path ? std::optional(std::string(receiver).append(":").append(*path)) : std::nullopt;
}

std::error_code GPSStorageAuthorization::setAuthorizedBookmarkData(
    const Data &data, std::optional<std::string_view> path, std::string_view receiver) {
    const auto key = authorizedBookmarkKeyForPath(path, receiver);
    return key ? UserDefaults::standardUserDefaults().setObject(data, *key)
               : std::make_error_code(std::errc::invalid_argument);
}

std::optional<URL>
GPSStorageAuthorization::authorizedBookmarkURLForPath(std::optional<std::string_view> path,
                                                      ErrorPtr *error, std::string_view receiver) {
    const auto key = authorizedBookmarkKeyForPath(path, receiver);
    if (!key) {
        if (error != nullptr) {
            *error = failure({description("Unable to create key for authorization path")});
        }
        return std::nullopt;
    }
    // The error of a grant that does not resolve is not handed on: hosts rely on their variable
    // being left as it was, and test the result.
    return grantUnderKey(*key).url;
}

void GPSStorageAuthorization::authorizePath(std::string_view path, std::string_view window,
                                            Completion completion, std::string_view receiver) {
    authorizePathAndReport(
        path, window,
        [completion = std::move(completion)](const ErrorPtr &error, std::error_code /*keeping*/) {
            if (completion) {
                completion(error);
            }
        },
        receiver);
}

void GPSStorageAuthorization::authorizePathAndReport(std::string_view path, std::string_view window,
                                                     ReportCompletion completion,
                                                     std::string_view receiver) {
    const auto panel = OpenPanel::openPanel();
    panel->setDirectoryURL(URL::fileURLWithPath(path));
    panel->beginSheetModalForWindow(
        window, [panel, path = std::string(path), receiver = std::string(receiver),
                 completion = std::move(completion)](std::int64_t response) {
            std::error_code keeping;
            const ErrorPtr outcome = outcomeOf(*panel, response, path, receiver, keeping);
            if (completion) {
                completion(outcome, keeping);
            }
        });
}

} // namespace pelluvia
