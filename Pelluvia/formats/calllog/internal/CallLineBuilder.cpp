// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/calllog/internal/CallLineBuilder.h>

#include <Pelluvia/formats/calllog/internal/CallLogLimits.h>
#include <Pelluvia/formats/calllog/internal/CallValues.h>

#include <algorithm>
#include <utility>

namespace pelluvia {

namespace {

/// The core of the JSON library's message, which wraps it into its own name, a position that we
/// give ourselves, and the last token, which may be long.
std::string reasonOf(std::string_view message) {
    if (const std::size_t column = message.find("column "); column != std::string_view::npos) {
        if (const std::size_t reason = message.find(": ", column);
            reason != std::string_view::npos) {
            message.remove_prefix(reason + 2);
        }
    }
    return excerpt(message.substr(0, message.find("; last read")));
}

} // namespace

bool CallLineBuilder::null() {
    return add(Value());
}

bool CallLineBuilder::boolean(bool /*value*/) {
    return fail("true and false are not values of a call");
}

bool CallLineBuilder::number_integer(std::int64_t value) {
    return add(Value(value));
}

bool CallLineBuilder::number_unsigned(std::uint64_t value) {
    return std::in_range<std::int64_t>(value) ? add(Value(static_cast<std::int64_t>(value)))
                                              : fail("an integer does not fit in 64 bits");
}

bool CallLineBuilder::number_float(double value, const std::string &text) {
    // The library turns an integer that it cannot hold into a real.
    return text.find_first_not_of("-0123456789") == std::string::npos
               ? fail("an integer does not fit in 64 bits")
               : add(Value(value));
}

bool CallLineBuilder::string(std::string &text) {
    return add(Value(std::string_view(text)));
}

bool CallLineBuilder::binary(nlohmann::json::binary_t & /*bytes*/) {
    return fail("binary values are not values of a call");
}

bool CallLineBuilder::start_object(std::size_t /*size*/) {
    if (!isLineOpen_) {
        isLineOpen_ = true;
        return true;
    }
    return open({.dictionary = Ref<Dictionary>::make(), .array = {}, .key = {}});
}

bool CallLineBuilder::start_array(std::size_t /*size*/) {
    return open({.dictionary = {}, .array = Ref<Array>::make(), .key = {}});
}

bool CallLineBuilder::open(Container container) {
    if (!isLineOpen_) {
        return fail("a line must be a JSON object");
    }
    if (open_.size() + 1 == callLogLimits::depth) {
        return fail("objects and arrays nest more than " + std::to_string(callLogLimits::depth) +
                    " deep");
    }
    open_.push_back(std::move(container));
    return true;
}

bool CallLineBuilder::key(std::string &name) {
    if (open_.empty()) {
        return nameField(name);
    }
    Container &container = open_.back();
    container.key.emplace(std::string_view(name));
    if (container.dictionary->contains(*container.key)) {
        return fail("the key " + inQuotes(name) + " stands twice in one dictionary");
    }
    if (container.dictionary->size() == callLogLimits::keys) {
        return fail("a dictionary has more than " + std::to_string(callLogLimits::keys) + " keys");
    }
    return true;
}

bool CallLineBuilder::nameField(std::string_view name) {
    const auto *const found = std::find(callFieldNames.begin(), callFieldNames.end(), name);
    if (found == callFieldNames.end()) {
        return fail("unknown field " + inQuotes(name));
    }
    field_ = static_cast<CallField>(found - callFieldNames.begin());
    return true;
}

bool CallLineBuilder::end_object() {
    if (open_.empty()) {
        return true; // the line's own
    }
    const Ref<Dictionary> dictionary = std::move(open_.back().dictionary);
    open_.pop_back();
    return add(convertsObjects() ? valueOfObject(dictionary) : Value(dictionary));
}

bool CallLineBuilder::end_array() {
    Value array(std::move(open_.back().array));
    open_.pop_back();
    return add(std::move(array));
}

/// An argument itself is never converted, since what it must be is known from its name; nor is
/// anything in an error object, whose user information knows neither points nor reals.
bool CallLineBuilder::convertsObjects() const noexcept {
    return !open_.empty() && field_ != CallField::Object && field_ != CallField::Error;
}

bool CallLineBuilder::add(Value value) {
    if (open_.empty()) {
        return addToLine(std::move(value));
    }
    if (value.isNil()) {
        return fail("null is not a value in a dictionary or an array");
    }
    Container &container = open_.back();
    if (container.array) {
        container.array->append(std::move(value));
    } else {
        container.dictionary->set(*std::exchange(container.key, std::nullopt), std::move(value));
    }
    return true;
}

bool CallLineBuilder::addToLine(Value value) {
    if (!isLineOpen_) {
        return fail("a line must be a JSON object");
    }
    return line_.add(*field_, std::move(value)) ||
           fail("the field " + inQuotes(nameOf(*field_)) + " stands twice in one line");
}

bool CallLineBuilder::parse_error(std::size_t position, const std::string & /*token*/,
                                  const nlohmann::detail::exception &error) {
    fault_ = CallLineFault{.message = reasonOf(error.what()),
                           .column = static_cast<std::int64_t>(position)};
    return false;
}

bool CallLineBuilder::fail(std::string message) {
    fault_ = CallLineFault{.message = std::move(message)};
    return false;
}

} // namespace pelluvia
