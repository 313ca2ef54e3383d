// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <cstring>

namespace pelluvia {

/// The type of a plain record as text: what a `Value` remembers of the record that it wraps, so
/// that only the same type is unwrapped. Letters stand for the fields (`d` a 64-bit float, `f` a
/// 32-bit one, `q` a signed 64-bit integer, `i` a 32-bit one), a record is `{?=...}`.
///
/// Who wraps a record of his own says its encoding once, beside the record:
///
///     template <>
///     struct pelluvia::RecordEncoding<Position> {
///         static constexpr const char *value = "{?=dd}";
///     };
///
/// Two types of one encoding are the same to a value. The text must live as long as the values.
template <class Record>
struct RecordEncoding;

template <>
struct RecordEncoding<double> {
    static constexpr const char *value = "d";
};
template <>
struct RecordEncoding<float> {
    static constexpr const char *value = "f";
};
template <>
struct RecordEncoding<std::int64_t> {
    static constexpr const char *value = "q";
};
template <>
struct RecordEncoding<std::int32_t> {
    static constexpr const char *value = "i";
};

/// Whether two encodings are the same text. Neither may be null.
[[nodiscard]] inline bool isSameEncoding(const char *a, const char *b) noexcept {
    return a == b || std::strcmp(a, b) == 0;
}

} // namespace pelluvia
