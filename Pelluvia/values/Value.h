// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Export.h>
#include <Pelluvia/values/Number.h>
#include <Pelluvia/values/RecordEncoding.h>
#include <Pelluvia/values/Ref.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace pelluvia {

class Array;
class Dictionary;

/// What a dictionary or an array holds: a number, a string, a wrapped plain record, an array, a
/// dictionary, or nothing (nil). Each of these converts to a value where one is expected:
///
///     track.set(extras::name, "Morning ride");
///     track.set(extras::points, Ref<Array>::make());
///
/// Copying is cheap: strings and records are immutable and shared; arrays and dictionaries are
/// objects, so a copied value refers to the same one. A value that was moved from is nil.
///
/// Arrays and dictionaries may nest as deeply as memory allows; letting them go needs no stack. One
/// that holds itself, directly or through others, is never let go unless its owner breaks the ring.
///
/// Threads: as for any plain value; what two copies share is safe to read from two threads.
class PELLUVIA_EXPORT Value {
  public:
    enum class Kind : std::uint8_t {
        None, // nil
        Integer,
        Float,
        Double,
        String,
        Record,
        Array,
        Dictionary
    };

    /// nil.
    Value() noexcept = default;
    Value(std::nullptr_t) noexcept {}
    /// Any integer, or `bool` (0 or 1), as 64 bits: an unsigned one from 2^63 on becomes the
    /// largest signed one.
    template <IntegerLike Integer>
    Value(Integer value) noexcept : kind_(Kind::Integer) {
        bits_.integer = saturatedInt64(value);
    }
    Value(float value) noexcept : kind_(Kind::Float) { bits_.single = value; }
    Value(double value) noexcept : kind_(Kind::Double) { bits_.real = value; }
    /// A copy of the text, which should be UTF-8 and may hold NULs.
    Value(std::string_view text);
    Value(const std::string &text) : Value(std::string_view(text)) {}
    /// The same of a text that ends before its first NUL; a null pointer makes nil.
    Value(const char *text);
    /// Refers to the array; a null reference makes nil.
    Value(Ref<Array> array) noexcept;
    /// Refers to the dictionary; a null reference makes nil.
    Value(Ref<Dictionary> dictionary) noexcept;
    /// Wraps a copy of a plain record, which `unwrap` of the same type gives back byte for byte.
    /// The type has a `RecordEncoding`.
    template <class Record>
    [[nodiscard]] static Value wrapping(const Record &record) {
        static_assert(std::is_trivially_copyable_v<Record> && alignof(Record) <= 8);
        return wrappingBytes(&record, sizeof record, RecordEncoding<Record>::value);
    }

    Value(const Value &other) noexcept;
    Value(Value &&other) noexcept
        : bits_(other.bits_), kind_(std::exchange(other.kind_, Kind::None)) {}
    // By value: what is let go may be the container that holds the new value.
    Value &operator=(Value other) noexcept {
        std::swap(bits_, other.bits_);
        std::swap(kind_, other.kind_);
        return *this;
    }
    ~Value() {
        if (kind_ >= Kind::String) {
            releaseObject();
        }
    }

    /// Makes it a copy of the text, as `= Value(text)` does, in the memory of the string that it
    /// was if no other value shares that one and the text fits.
    void assign(std::string_view text);

    [[nodiscard]] Kind kind() const noexcept { return kind_; }
    [[nodiscard]] bool isNil() const noexcept { return kind_ == Kind::None; }

    /// The number, or nothing when this is not one.
    [[nodiscard]] std::optional<Number> number() const noexcept;
    /// The text, or nothing when this is not a string. The view is valid while a value that shares
    /// the string lives; the byte behind it is NUL.
    [[nodiscard]] std::optional<std::string_view> string() const noexcept;
    /// The wrapped record, or null when this does not wrap a `Record`. Valid while a value that
    /// shares it lives.
    template <class Record>
    [[nodiscard]] const Record *unwrap() const noexcept {
        return static_cast<const Record *>(
            unwrapBytes(sizeof(Record), RecordEncoding<Record>::value));
    }
    /// The encoding of the wrapped record, or null when this wraps none (see `RecordEncoding`).
    [[nodiscard]] const char *recordEncoding() const noexcept;
    /// The array, or null when this is not one. Borrowed: make a `Ref` to keep it.
    [[nodiscard]] Array *array() const noexcept;
    /// The dictionary, or null when this is not one. Borrowed: make a `Ref` to keep it.
    [[nodiscard]] Dictionary *dictionary() const noexcept;

  private:
    friend class Dictionary; // wraps records of a type that it was told
    class PELLUVIA_HIDDEN Text;
    class PELLUVIA_HIDDEN RecordBox;

    [[nodiscard]] static Value wrappingBytes(const void *bytes, std::size_t size,
                                             const char *encoding);
    [[nodiscard]] const void *unwrapBytes(std::size_t size, const char *encoding) const noexcept;
    PELLUVIA_HIDDEN void retainObject() const noexcept;
    void releaseObject() const noexcept;

    union {
        std::int64_t integer;
        float single;
        double real;
        Text *text;
        const RecordBox *record;
        Array *array;
        Dictionary *dictionary;
    } bits_{};
    // Last, so that a dictionary entry can keep its key in the padding behind it.
    Kind kind_ = Kind::None;
};

} // namespace pelluvia
