// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Dictionary.h>
#include <Pelluvia/values/Export.h>
#include <Pelluvia/values/IndexIterator.h>
#include <Pelluvia/values/Ref.h>
#include <Pelluvia/values/Value.h>

#include <cstddef>
#include <initializer_list>
#include <utility>
#include <vector>

namespace pelluvia {

/// A growing list of values. An object like `Dictionary`: shared through `Ref<Array>` where values
/// refer to it; copying makes a new list of the same values. An array that contains itself is never
/// freed.
///
/// Threads: none; one thread at a time, or several that only read.
class PELLUVIA_EXPORT Array : public RefCounted<Array> {
  public:
    using Iterator = IndexIterator<Array, Value>;

    Array() = default;
    /// The values, as if each were appended in turn.
    Array(std::initializer_list<Value> values);
    Array(const Array &) = default;
    Array &operator=(const Array &other);
    ~Array();

    void append(Value value);
    /// Appends a dictionary; a null reference stands as nil.
    void append(Ref<Dictionary> dictionary);
    /// Removes the last value; the array must not be empty.
    void removeLast();

    [[nodiscard]] std::size_t size() const noexcept {
        return dictionaries_.size() + values_.size();
    }
    [[nodiscard]] bool empty() const noexcept { return size() == 0; }
    /// The value at a position below `size()`.
    [[nodiscard]] Value at(std::size_t position) const {
        return values_.empty() ? Value(dictionaries_[position]) : values_[position];
    }
    /// The dictionary at a position below `size()`, or null when something else stands there.
    /// Borrowed from the array until it changes.
    [[nodiscard]] Dictionary *dictionary(std::size_t position) const noexcept {
        return values_.empty() ? dictionaries_[position].get() : values_[position].dictionary();
    }
    [[nodiscard]] Iterator begin() const noexcept { return {*this, 0}; }
    [[nodiscard]] Iterator end() const noexcept { return {*this, size()}; }

  private:
    friend class ContainerRelease;

    // One of the two is empty. Most long arrays are the points of a track: while only dictionaries
    // have come, each takes eight bytes.
    std::vector<Ref<Dictionary>> dictionaries_;
    std::vector<Value> values_;
};

} // namespace pelluvia
