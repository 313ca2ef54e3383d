// SPDX-License-Identifier: MIT

#include <Pelluvia/values/Value.h>

#include <Pelluvia/values/Array.h>
#include <Pelluvia/values/Dictionary.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

namespace pelluvia {

namespace {

/// Memory for an object with `extra` bytes behind it.
template <class Object>
void *allocateWithTail(std::size_t extra) {
    void *memory = std::malloc(sizeof(Object) + extra); // NOLINT(cppcoreguidelines-no-malloc)
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

} // namespace

/// A string: the count of its owners, its length, and the bytes with a closing NUL. Immutable while
/// it has more than one owner.
class Value::Text : public RefCounted<Value::Text> {
  public:
    /// With room for so many bytes, or for those of the text.
    static Text *make(std::string_view text, std::size_t capacity = 0) {
        capacity = std::max(capacity, text.size());
        void *memory = allocateWithTail<Text>(capacity + 1);
        return new (memory) Text(text, capacity);
    }
    static void operator delete(void *memory) { std::free(memory); } // NOLINT

    [[nodiscard]] std::string_view view() const noexcept { return {bytes(), size_}; }
    [[nodiscard]] std::size_t capacity() const noexcept { return capacity_; }

    /// Takes another text, which must fit and may be a part of this one.
    void refill(std::string_view text) noexcept {
        size_ = text.size();
        if (!text.empty()) { // an empty text may be at no address
            std::memmove(bytes(), text.data(), text.size());
        }
        bytes()[text.size()] = '\0';
    }

  private:
    Text(std::string_view text, std::size_t capacity) noexcept
        : capacity_(static_cast<std::uint32_t>(std::min(capacity, largestCapacity))) {
        refill(text);
    }
    [[nodiscard]] char *bytes() const noexcept {
        // The bytes stand behind the object in the same allocation.
        return reinterpret_cast<char *>(const_cast<Text *>(this) + 1); // NOLINT
    }

    static constexpr std::size_t largestCapacity = std::numeric_limits<std::uint32_t>::max();

    std::uint32_t capacity_; // less than there is for texts of more than 4 GB
    std::size_t size_;
};

/// An immutable copy of a plain record, with its type.
class Value::RecordBox : public RefCounted<Value::RecordBox> {
  public:
    static const RecordBox *make(const void *bytes, std::size_t size, const char *encoding) {
        auto *box = new (allocateWithTail<RecordBox>(size)) RecordBox(size, encoding);
        std::memcpy(static_cast<void *>(box + 1), bytes, size);
        return box;
    }
    static void operator delete(void *memory) { std::free(memory); } // NOLINT

    [[nodiscard]] const void *bytes() const noexcept { return this + 1; }
    [[nodiscard]] const char *encoding() const noexcept { return encoding_; }
    [[nodiscard]] bool isOf(std::size_t size, const char *encoding) const noexcept {
        return size_ == size && isSameEncoding(encoding_, encoding);
    }

  private:
    RecordBox(std::size_t size, const char *encoding) noexcept : encoding_(encoding), size_(size) {}

    const char *encoding_;
    std::size_t size_;
};

Value::Value(std::string_view text) : kind_(Kind::String) {
    bits_.text = Text::make(text);
    retainObject();
}

Value::Value(const char *text) : Value() {
    if (text != nullptr) {
        *this = Value(std::string_view(text));
    }
}

void Value::assign(std::string_view text) {
    if (kind_ != Kind::String || !bits_.text->hasOneOwner()) {
        *this = Value(text);
    } else if (text.size() <= bits_.text->capacity()) {
        bits_.text->refill(text);
    } else {
        // Half as much again: a value that is filled again and again soon has room for all texts.
        Value larger;
        larger.bits_.text = Text::make(text, text.size() + text.size() / 2);
        larger.kind_ = Kind::String;
        larger.retainObject();
        *this = std::move(larger);
    }
}

Value::Value(Ref<Array> array) noexcept : kind_(array ? Kind::Array : Kind::None) {
    bits_.array = array.leak();
}

Value::Value(Ref<Dictionary> dictionary) noexcept
    : kind_(dictionary ? Kind::Dictionary : Kind::None) {
    bits_.dictionary = dictionary.leak();
}

Value Value::wrappingBytes(const void *bytes, std::size_t size, const char *encoding) {
    Value value;
    value.bits_.record = RecordBox::make(bytes, size, encoding);
    value.kind_ = Kind::Record;
    value.retainObject();
    return value;
}

Value::Value(const Value &other) noexcept : bits_(other.bits_), kind_(other.kind_) {
    retainObject();
}

std::optional<Number> Value::number() const noexcept {
    switch (kind_) {
    case Kind::Integer:
        return Number(bits_.integer);
    case Kind::Float:
        return Number(bits_.single);
    case Kind::Double:
        return Number(bits_.real);
    default:
        return std::nullopt;
    }
}

std::optional<std::string_view> Value::string() const noexcept {
    if (kind_ != Kind::String) {
        return std::nullopt;
    }
    return bits_.text->view();
}

Array *Value::array() const noexcept {
    return kind_ == Kind::Array ? bits_.array : nullptr;
}

Dictionary *Value::dictionary() const noexcept {
    return kind_ == Kind::Dictionary ? bits_.dictionary : nullptr;
}

const char *Value::recordEncoding() const noexcept {
    return kind_ == Kind::Record ? bits_.record->encoding() : nullptr;
}

const void *Value::unwrapBytes(std::size_t size, const char *encoding) const noexcept {
    if (kind_ != Kind::Record || !bits_.record->isOf(size, encoding)) {
        return nullptr;
    }
    return bits_.record->bytes();
}

void Value::retainObject() const noexcept {
    switch (kind_) {
    case Kind::String:
        return bits_.text->retain();
    case Kind::Record:
        return bits_.record->retain();
    case Kind::Array:
        return bits_.array->retain();
    case Kind::Dictionary:
        return bits_.dictionary->retain();
    default:
        return;
    }
}

void Value::releaseObject() const noexcept {
    switch (kind_) {
    case Kind::String:
        return bits_.text->release();
    case Kind::Record:
        return bits_.record->release();
    case Kind::Array:
        return bits_.array->release();
    case Kind::Dictionary:
        return bits_.dictionary->release();
    default:
        return;
    }
}

} // namespace pelluvia
