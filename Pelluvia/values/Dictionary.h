// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Export.h>
#include <Pelluvia/values/IndexIterator.h>
#include <Pelluvia/values/Key.h>
#include <Pelluvia/values/Ref.h>
#include <Pelluvia/values/Value.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>

namespace pelluvia {

/// A dictionary of values under string keys, in the order in which the keys were added. Made for
/// the handful of entries that a GPS point carries: a flat list, searched from the front.
///
///     Dictionary values{{extras::hr, 120}, {extras::sensor, "belt"}};
///     values.set(extras::temp, 21.5F);
///     receiver.trackPoint(point, &values);
///
/// Ownership: an object. It stands on the stack or in a member when one piece of code uses it, and
/// is shared through `Ref<Dictionary>` when values refer to it. Copying makes a new dictionary with
/// the same values; arrays and dictionaries among them are shared, not copied. A dictionary that
/// contains itself is never freed.
///
/// A recording holds millions of dictionaries that each wrap one record and a few numbers; those
/// are made with `wrapping`, in one block of memory: 16 bytes, the record, 16 bytes for each
/// further entry. They behave like any other dictionary.
///
/// Threads: none; one thread at a time, or several that only read.
class PELLUVIA_EXPORT Dictionary : public RefCounted<Dictionary> {
  public:
    /// One key with its value, never nil.
    struct Entry {
        [[no_unique_address]] Value value;
        Key key;

        Entry(Key entryKey, Value entryValue) noexcept
            : value(std::move(entryValue)), key(std::move(entryKey)) {}
    };
    using Iterator = IndexIterator<Dictionary, Entry>;

    /// The key of the record that `wrapping` stores.
    PELLUVIA_HIDDEN static constexpr Key recordKey = Key::known("point");
    /// The most bytes that such a record has.
    static constexpr std::size_t maxRecordSize = 40;
    /// The most entries with which a dictionary takes another key of a name of your own. Known keys
    /// always find room, so that whatever a caller fills can still be recorded and passed on.
    static constexpr std::size_t maxSize = 65'000;

    /// Empty. Provided by hand, so that a constant one can be declared without braces.
    Dictionary() noexcept {} // NOLINT(modernize-use-equals-default)
    /// The entries, as if each were `set` in turn.
    Dictionary(std::initializer_list<Entry> entries);
    Dictionary(const Dictionary &other);
    Dictionary &operator=(const Dictionary &other);
    ~Dictionary();

    /// A copy of `entries` (null: none) with the record wrapped under `recordKey`, in the place of
    /// an earlier value of that key or behind all others.
    template <class Record>
    [[nodiscard]] static Ref<Dictionary> wrapping(const Record &record, const Dictionary *entries) {
        static_assert(std::is_trivially_copyable_v<Record> && sizeof(Record) == maxRecordSize);
        return wrappingBytes(&record, RecordEncoding<Record>::value, entries);
    }

    /// The value under the key; nil when there is none.
    [[nodiscard]] Value find(const Key &key) const;
    [[nodiscard]] bool contains(const Key &key) const noexcept;

    /// The value under the key as the type asked for; nothing or null when there is none or it is
    /// of another type. What is returned is borrowed from the dictionary until it changes.
    [[nodiscard]] std::optional<Number> number(const Key &key) const noexcept {
        const Value *value = stored(key);
        return value != nullptr ? value->number() : std::nullopt;
    }
    [[nodiscard]] std::optional<std::string_view> string(const Key &key) const noexcept {
        const Value *value = stored(key);
        return value != nullptr ? value->string() : std::nullopt;
    }
    [[nodiscard]] Array *array(const Key &key) const noexcept {
        const Value *value = stored(key);
        return value != nullptr ? value->array() : nullptr;
    }
    [[nodiscard]] Dictionary *dictionary(const Key &key) const noexcept {
        const Value *value = stored(key);
        return value != nullptr ? value->dictionary() : nullptr;
    }
    template <class Record>
    [[nodiscard]] const Record *record(const Key &key) const noexcept {
        if (isCompact() && key == recordKey) {
            return sizeof(Record) == maxRecordSize &&
                           isSameEncoding(recordEncoding_, RecordEncoding<Record>::value)
                       ? reinterpret_cast<const Record *>(recordBytes()) // NOLINT
                       : nullptr;
        }
        const Value *value = stored(key);
        return value != nullptr ? value->unwrap<Record>() : nullptr;
    }

    /// Puts the value under the key, in the place of an earlier one of that key or behind all
    /// others. Setting nil, a null text among it, removes the key. False, and nothing is changed,
    /// where there is no room for a further key (see `maxSize`).
    bool set(Key key, Value value);
    /// Removes the key if it is there.
    void remove(const Key &key);
    /// Removes everything and keeps the memory, so that a dictionary that is filled again and again
    /// allocates once.
    void removeAll() noexcept;

    [[nodiscard]] std::size_t size() const noexcept { return slotCount_ + (isCompact() ? 1U : 0U); }
    [[nodiscard]] bool empty() const noexcept { return size() == 0; }
    /// The entry at a position below `size()`, in the order of adding.
    [[nodiscard]] Entry at(std::size_t position) const;
    [[nodiscard]] Iterator begin() const noexcept { return {*this, 0}; }
    [[nodiscard]] Iterator end() const noexcept { return {*this, size()}; }

    static void *operator new(std::size_t size);
    static void *operator new(std::size_t /*size*/, void *place) noexcept { return place; }
    static void operator delete(void *memory) noexcept;

  private:
    friend class ContainerRelease;

    /// What a dictionary that `wrapping` did not make allocates for its slots.
    struct PELLUVIA_HIDDEN Block;

    [[nodiscard]] static Ref<Dictionary> wrappingBytes(const void *bytes, const char *encoding,
                                                       const Dictionary *entries);

    [[nodiscard]] bool isCompact() const noexcept { return recordPosition_ != notCompact; }
    // The memory behind a compact dictionary: the record, then the slots.
    [[nodiscard]] std::byte *recordBytes() const noexcept {
        return reinterpret_cast<std::byte *>(const_cast<Dictionary *>(this) + 1); // NOLINT
    }
    [[nodiscard]] Entry *slots() const noexcept {
        return isCompact() ? reinterpret_cast<Entry *>(recordBytes() + maxRecordSize) // NOLINT
                           : slots_;
    }
    [[nodiscard]] Entry *slotOf(const Key &key) const noexcept {
        Entry *slot = slots();
        for (const Entry *end = slot + slotCount_; slot != end; ++slot) {
            if (slot->key == key) {
                return slot;
            }
        }
        return nullptr;
    }
    [[nodiscard]] const Value *stored(const Key &key) const noexcept {
        const Entry *slot = slotOf(key);
        return slot != nullptr ? &slot->value : nullptr;
    }
    [[nodiscard]] PELLUVIA_HIDDEN std::size_t capacity() const noexcept;
    /// Adds behind all others; the key must not be there and there must be room.
    PELLUVIA_HIDDEN void append(Key key, Value value) noexcept;
    /// Moves all entries to new slots; an ordinary dictionary from then on.
    PELLUVIA_HIDDEN void moveTo(std::size_t capacity);
    /// Adds copies of all entries of another dictionary; this one must be empty.
    PELLUVIA_HIDDEN void copyFrom(const Dictionary &other);

    PELLUVIA_HIDDEN static constexpr std::uint8_t notCompact = 255;
    PELLUVIA_HIDDEN static constexpr std::size_t mostSlots =
        65'535; // what the slots' count can tell
    static_assert(knownKeyNames.size() <= mostSlots - maxSize, "each finds room");

    // These stand behind the four bytes of the owners' count.
    std::uint8_t recordPosition_ = notCompact; // of the record among the entries
    std::uint8_t compactCapacity_ = 0;         // slots behind the record
    std::uint16_t slotCount_ = 0;
    union {
        Entry *slots_ = nullptr;
        const char *recordEncoding_; // of a compact dictionary
    };
};

static_assert(sizeof(Dictionary::Entry) == 16, "an entry's key stands in its value's padding");
static_assert(sizeof(Dictionary) == 16);

} // namespace pelluvia
