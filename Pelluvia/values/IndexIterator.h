// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <iterator>

namespace pelluvia {

/// Runs over a container that makes its elements on demand: `container.at(position)` gives each by
/// value. Enough for a range-based `for`.
template <class Container, class Element>
class IndexIterator {
  public:
    using iterator_category = std::input_iterator_tag;
    using value_type = Element;
    using difference_type = std::ptrdiff_t;
    using pointer = const Element *;
    using reference = Element;

    IndexIterator(const Container &container, std::size_t position) noexcept
        : container_(&container), position_(position) {}

    Element operator*() const { return container_->at(position_); }
    IndexIterator &operator++() noexcept {
        ++position_;
        return *this;
    }
    friend bool operator==(const IndexIterator &a, const IndexIterator &b) noexcept {
        return a.position_ == b.position_;
    }

  private:
    const Container *container_;
    std::size_t position_;
};

} // namespace pelluvia
