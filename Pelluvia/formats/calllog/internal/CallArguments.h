// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/formats/calllog/internal/CallLine.h>

#include <Pelluvia/model/GPSPoint.h>
#include <Pelluvia/model/Report.h>
#include <Pelluvia/values/Dictionary.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace pelluvia {

/// Takes the arguments of one call out of its line. What is wrong is remembered, so that a caller
/// takes all it needs and then asks `areComplete` once.
///
/// The line is borrowed, also by the dictionaries that are taken. Threads: one at a time.
class CallArguments {
  public:
    CallArguments(const CallLine &line, std::string_view call) noexcept
        : line_(line), call_(call) {}

    /// Each takes the argument that the field holds; a fault when it is missing or of another type.
    [[nodiscard]] std::int32_t int32(CallField field);
    [[nodiscard]] const Dictionary *dictionary(CallField field);
    [[nodiscard]] GPSPoint point(CallField field);
    [[nodiscard]] Report report(CallField field);

    /// Whether all arguments were there and right, and the line holds nothing else.
    [[nodiscard]] bool areComplete();
    /// The first thing that was wrong, or nothing.
    [[nodiscard]] const std::optional<CallLineFault> &fault() const noexcept { return fault_; }

  private:
    [[nodiscard]] const Value *take(CallField field);
    void fail(CallField field, std::string_view demand);

    const CallLine &line_;
    std::string_view call_;
    std::uint32_t taken_ = 1U << static_cast<unsigned>(CallField::Call); // a bit for each field
    std::optional<CallLineFault> fault_;
};

} // namespace pelluvia
