// SPDX-License-Identifier: MIT

#include <Pelluvia/values/Error.h>

#include <algorithm>

namespace pelluvia {

struct Error::State {
    std::string domain;
    std::int64_t code;
    ErrorInfo userInfo;
};

Error::Error(std::string_view domain, std::int64_t code, ErrorInfo userInfo)
    : state_(std::make_shared<const State>(State{std::string(domain), code, std::move(userInfo)})) {
}

Error::~Error() = default;

ErrorPtr Error::make(std::string_view domain, std::int64_t code, ErrorInfo userInfo) {
    return std::make_shared<const Error>(domain, code, std::move(userInfo));
}

const std::string &Error::domain() const noexcept {
    return state_->domain;
}

std::int64_t Error::code() const noexcept {
    return state_->code;
}

const ErrorInfo &Error::userInfo() const noexcept {
    return state_->userInfo;
}

const ErrorValue *Error::find(std::string_view key) const noexcept {
    const ErrorInfo &information = userInfo();
    const auto pair = std::find_if(information.begin(), information.end(),
                                   [key](const auto &each) { return each.first == key; });
    return pair != information.end() ? &pair->second : nullptr;
}

std::int64_t Error::integer(std::string_view key) const noexcept {
    const ErrorValue *value = find(key);
    const auto *number = value != nullptr ? std::get_if<std::int64_t>(value) : nullptr;
    return number != nullptr ? *number : 0;
}

std::string Error::localizedDescription() const {
    const ErrorValue *value = find(NSLocalizedDescriptionKey);
    if (value != nullptr && std::holds_alternative<std::string>(*value)) {
        return std::get<std::string>(*value);
    }
    return domain() + " error " + std::to_string(code());
}

ErrorPtr Error::underlyingError() const noexcept {
    const ErrorValue *value = find(NSUnderlyingErrorKey);
    const auto *error = value != nullptr ? std::get_if<ErrorPtr>(value) : nullptr;
    return error != nullptr ? *error : nullptr;
}

} // namespace pelluvia
