#pragma once

#include <Pelluvia/values/Export.h>
#include <Pelluvia/values/Number.h>
#include <Pelluvia/values/Ref.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <utility>

namespace pelluvia {

class Array;
class Dictionary;

/// What a dictionary or an array holds: a number, a string, a wrapped plain record, an array, a
/// dictionary, or nothing (nil).
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
        Nil,
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
    explicit Value(std::int32_t value) noexcept : Value(std::int64_t{value}) {}
    explicit Value(std::int64_t value) noexcept : kind_(Kind::Integer) { bits_.integer = value; }
    explicit Value(float value) noexcept : kind_(Kind::Float) { bits_.single = value; }
    explicit Value(double value) noexcept : kind_(Kind::Double) { bits_.real = value; }
    /// A copy of the text, which should be UTF-8 and may hold NULs.
    explicit Value(std::string_view text);
    /// Refers to the array; a null reference makes nil.
    explicit Value(Ref<Array> array) noexcept;
    /// Refers to the dictionary; a null reference makes nil.
    explicit Value(Ref<Dictionary> dictionary) noexcept;
    /// Wraps a copy of a plain record, which `unwrap` of the same type gives back byte for byte.
    template <class Record>
    [[nodiscard]] static Value wrapping(const Record &record) {
        static_assert(std::is_trivially_copyable_v<Record> && alignof(Record) <= 8);
        return wrappingBytes(&record, sizeof record, typeid(Record));
    }

    Value(const Value &other) noexcept;
    Value(Value &&other) noexcept
        : bits_(other.bits_), kind_(std::exchange(other.kind_, Kind::Nil)) {}
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
    [[nodiscard]] bool isNil() const noexcept { return kind_ == Kind::Nil; }

    /// The number, or nothing when this is not one.
    [[nodiscard]] std::optional<Number> number() const noexcept;
    /// The text, or nothing when this is not a string. The view is valid while a value that shares
    /// the string lives; the byte behind it is NUL.
    [[nodiscard]] std::optional<std::string_view> string() const noexcept;
    /// The wrapped record, or null when this does not wrap a `Record`. Valid while a value that
    /// shares it lives.
    template <class Record>
    [[nodiscard]] const Record *unwrap() const noexcept {
        return static_cast<const Record *>(unwrapBytes(typeid(Record)));
    }
    /// The array, or null when this is not one. Borrowed: make a `Ref` to keep it.
    [[nodiscard]] Array *array() const noexcept;
    /// The dictionary, or null when this is not one. Borrowed: make a `Ref` to keep it.
    [[nodiscard]] Dictionary *dictionary() const noexcept;

  private:
    friend class Dictionary; // wraps records of a type that it was told
    class Text;
    class RecordBox;

    [[nodiscard]] static Value wrappingBytes(const void *bytes, std::size_t size,
                                             const std::type_info &type);
    [[nodiscard]] const void *unwrapBytes(const std::type_info &type) const noexcept;
    void retainObject() const noexcept;
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
    Kind kind_ = Kind::Nil;
};

} // namespace pelluvia
