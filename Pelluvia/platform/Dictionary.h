#pragma once

#include <Pelluvia/platform/Export.h>
#include <Pelluvia/platform/Key.h>
#include <Pelluvia/platform/Ref.h>
#include <Pelluvia/platform/Value.h>

#include <cstddef>
#include <utility>
#include <vector>

namespace pelluvia {

/// A dictionary of values under string keys, in the order in which the keys were added. Made for
/// the handful of entries that a GPS point carries: a flat list, searched from the front.
///
///     Dictionary extras;
///     extras.set(extras::hr, Value(120));
///     receiver.trackPoint(point, &extras);
///
/// Ownership: an object. It stands on the stack or in a member when one piece of code uses it, and
/// is shared through `Ref<Dictionary>` when values refer to it. Copying makes a new dictionary with
/// the same values; arrays and dictionaries among them are shared, not copied.
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

    /// The value under the key, or null when there is none. Valid until the dictionary changes.
    [[nodiscard]] const Value *find(const Key &key) const noexcept {
        for (const Entry &entry : entries_) {
            if (entry.key == key) {
                return &entry.value;
            }
        }
        return nullptr;
    }

    /// Puts the value under the key, in the place of an earlier one of that key or behind all
    /// others. Setting nil removes the key. A key that was removed and is set again comes last.
    void set(Key key, Value value);

    /// Removes the key if it is there; the others keep their order.
    void remove(const Key &key);

    /// Removes everything and keeps the memory, so that a dictionary that is filled again and again
    /// allocates once.
    void removeAll() noexcept { entries_.clear(); }

    [[nodiscard]] std::size_t size() const noexcept { return entries_.size(); }
    [[nodiscard]] bool empty() const noexcept { return entries_.empty(); }
    [[nodiscard]] auto begin() const noexcept { return entries_.begin(); }
    [[nodiscard]] auto end() const noexcept { return entries_.end(); }

  private:
    friend class Value; // lets go of nested containers
    [[nodiscard]] Value *last() noexcept {
        return entries_.empty() ? nullptr : &entries_.back().value;
    }
    void removeLast() noexcept { entries_.pop_back(); }

    std::vector<Entry> entries_;
};

static_assert(sizeof(Dictionary::Entry) == 16, "an entry's key stands in its value's padding");

} // namespace pelluvia
