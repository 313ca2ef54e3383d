// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/calllog/internal/CallArguments.h>

#include <Pelluvia/formats/calllog/internal/CallValues.h>

#include <utility>

namespace pelluvia {

std::int32_t CallArguments::int32(CallField field) {
    const Value *value = take(field);
    if (value == nullptr) {
        return 0;
    }
    const std::int64_t number =
        value->kind() == Value::Kind::Integer ? value->number()->int64Value() : INT64_MAX;
    if (!std::in_range<std::int32_t>(number)) {
        fail(field, "must be a 32-bit integer");
        return 0;
    }
    return static_cast<std::int32_t>(number);
}

const Dictionary *CallArguments::dictionary(CallField field) {
    const Value *value = take(field);
    if (value != nullptr && !value->isNil() && value->dictionary() == nullptr) {
        fail(field, "must be an object or null");
    }
    return value != nullptr ? value->dictionary() : nullptr;
}

GPSPoint CallArguments::point(CallField field) {
    const Value *value = take(field);
    if (value == nullptr) {
        return {};
    }
    const Dictionary *object = value->dictionary();
    const auto point = object != nullptr ? pointArgument(*object) : std::nullopt;
    if (!point) {
        fail(field, "must be an object with the numbers latitude, longitude and altitude and the "
                    "integers time and test, and nothing else");
    }
    return point.value_or(GPSPoint());
}

Report CallArguments::report(CallField field) {
    const Value *value = take(field);
    if (value == nullptr || value->isNil()) {
        return {};
    }
    if (const auto text = value->string()) {
        return std::string(*text);
    }
    const Dictionary *object = value->dictionary();
    const ErrorPtr error = object != nullptr ? errorArgument(*object) : nullptr;
    if (error == nullptr) {
        fail(field, "must be a string, null or an error: an object with a string domain, an "
                    "integer code and an object userInfo of strings, integers and errors");
        return {};
    }
    return error;
}

bool CallArguments::areComplete() {
    for (std::size_t field = 0; field < callFieldNames.size() && !fault_; ++field) {
        if (line_[static_cast<CallField>(field)] && (taken_ >> field & 1U) == 0) {
            fault_ = CallLineFault{.message = std::string(call_) + " has no field " +
                                              inQuotes(callFieldNames[field])};
        }
    }
    return !fault_;
}

const Value *CallArguments::take(CallField field) {
    taken_ |= 1U << static_cast<unsigned>(field);
    const std::optional<Value> &value = line_[field];
    if (!value) {
        fail(field, "is missing");
        return nullptr;
    }
    return &*value;
}

void CallArguments::fail(CallField field, std::string_view demand) {
    if (!fault_) {
        fault_ = CallLineFault{.message = inQuotes(nameOf(field)) + " of " + std::string(call_) +
                                          " " + std::string(demand)};
    }
}

} // namespace pelluvia
