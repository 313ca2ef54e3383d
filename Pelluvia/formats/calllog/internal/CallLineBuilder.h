// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/formats/calllog/internal/CallLine.h>

#include <Pelluvia/values/Array.h>
#include <Pelluvia/values/Dictionary.h>
#include <Pelluvia/values/Key.h>
#include <Pelluvia/values/Ref.h>

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pelluvia {

/// Builds a `CallLine` from the events of one JSON text. Every handler returns whether to go on.
class CallLineBuilder final : public nlohmann::json_sax<nlohmann::json> {
  public:
    /// The line is borrowed and should be empty.
    explicit CallLineBuilder(CallLine &line) noexcept : line_(line) {}

    /// What was wrong, or nothing.
    [[nodiscard]] const std::optional<CallLineFault> &fault() const noexcept { return fault_; }

    bool null() override;
    bool boolean(bool value) override;
    bool number_integer(std::int64_t value) override;
    bool number_unsigned(std::uint64_t value) override;
    bool number_float(double value, const std::string &text) override;
    bool string(std::string &text) override;
    bool binary(nlohmann::json::binary_t &bytes) override;
    bool start_object(std::size_t size) override;
    bool key(std::string &name) override;
    bool end_object() override;
    bool start_array(std::size_t size) override;
    bool end_array() override;
    bool parse_error(std::size_t position, const std::string &token,
                     const nlohmann::detail::exception &error) override;

  private:
    /// A container that is being filled: one of the two, and the key that waits for its value.
    struct Container {
        Ref<Dictionary> dictionary;
        Ref<Array> array;
        std::optional<Key> key;
    };

    bool add(Value value);
    bool addToLine(Value value);
    bool open(Container container);
    bool nameField(std::string_view name);
    [[nodiscard]] bool convertsObjects() const noexcept;
    bool fail(std::string message);

    CallLine &line_;
    bool isLineOpen_ = false;
    std::optional<CallField> field_; // of the line, that waits for its value
    std::vector<Container> open_;    // inside the line's object
    std::optional<CallLineFault> fault_;
};

} // namespace pelluvia
