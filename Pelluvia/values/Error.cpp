#include <Pelluvia/values/Error.h>

#include <algorithm>

namespace pelluvia {

const ErrorValue *Error::find(std::string_view key) const noexcept {
    const auto pair = std::find_if(userInfo_.begin(), userInfo_.end(),
                                   [key](const auto &each) { return each.first == key; });
    return pair != userInfo_.end() ? &pair->second : nullptr;
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
    return domain_ + " error " + std::to_string(code_);
}

ErrorPtr Error::underlyingError() const noexcept {
    const ErrorValue *value = find(NSUnderlyingErrorKey);
    const auto *error = value != nullptr ? std::get_if<ErrorPtr>(value) : nullptr;
    return error != nullptr ? *error : nullptr;
}

} // namespace pelluvia
