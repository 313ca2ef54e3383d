#pragma once

#include <Pelluvia/platform/Export.h>
#include <Pelluvia/platform/Ref.h>
#include <Pelluvia/platform/Value.h>

#include <cstddef>
#include <utility>
#include <vector>

namespace pelluvia {

/// A growing list of values. An object like `Dictionary`: shared through `Ref<Array>` where values
/// refer to it. Copying makes a new list of the same values; arrays and dictionaries among them are
/// shared, not copied.
///
/// Threads: none; one thread at a time, or several that only read.
class PELLUVIA_EXPORT Array : public RefCounted<Array> {
  public:
    void append(Value value) { values_.push_back(std::move(value)); }
    /// Removes the last value; the array must not be empty.
    void removeLast() { values_.pop_back(); }

    [[nodiscard]] std::size_t size() const noexcept { return values_.size(); }
    [[nodiscard]] bool empty() const noexcept { return values_.empty(); }
    /// The value at a position below `size()`. Valid until the array changes.
    [[nodiscard]] const Value &operator[](std::size_t position) const noexcept {
        return values_[position];
    }
    [[nodiscard]] auto begin() const noexcept { return values_.begin(); }
    [[nodiscard]] auto end() const noexcept { return values_.end(); }

  private:
    friend class Value; // lets go of nested containers
    [[nodiscard]] Value *last() noexcept { return values_.empty() ? nullptr : &values_.back(); }

    std::vector<Value> values_;
};

} // namespace pelluvia
