// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Array.h>
#include <Pelluvia/values/Dictionary.h>
#include <Pelluvia/values/Value.h>

#include <new>
#include <utility>
#include <vector>

namespace pelluvia {

/// Lets go of containers within containers one after the other instead of one inside the other, so
/// that the depth of what a file or a host has nested cannot exhaust the stack.
///
/// A destructor passes each of its values to `take`; what is not taken has nothing deep in it and
/// is destroyed on the spot (among them the millions of point dictionaries of a recording).
class ContainerRelease {
  public:
    ContainerRelease() = default;
    ContainerRelease(const ContainerRelease &) = delete;
    ContainerRelease &operator=(const ContainerRelease &) = delete;
    ~ContainerRelease() {
        while (!pending_.empty()) {
            const Value value = std::move(pending_.back());
            pending_.pop_back();
            if (Array *array = value.array(); array != nullptr && array->hasOneOwner()) {
                takeAll(*array);
            } else if (Dictionary *dictionary = value.dictionary();
                       dictionary != nullptr && dictionary->hasOneOwner()) {
                takeAll(*dictionary);
            }
        }
    }

    /// Takes the value, and leaves nil, if it is a container that has containers in it.
    void take(Value &value) noexcept {
        if (holdsContainers(value)) {
            postpone(value);
        }
    }
    void takeAll(Array &array) noexcept {
        for (Value &value : array.values_) {
            take(value);
        }
        for (Ref<Dictionary> &dictionary : array.dictionaries_) {
            if (dictionary && holdsContainers(*dictionary)) { // null: taken before
                postpone(dictionary);
            }
        }
    }
    void takeAll(Dictionary &dictionary) noexcept {
        Dictionary::Entry *slots = dictionary.slots();
        for (std::size_t i = 0; i < dictionary.slotCount_; ++i) {
            take(slots[i].value);
        }
    }

  private:
    template <class Owner>
    void postpone(Owner &owner) noexcept {
        try {
            pending_.emplace_back(std::move(owner));
        } catch (const std::bad_alloc &) {
            return; // it stays where it is and is destroyed there, one inside the other
        }
    }
    static bool isContainer(const Value &value) noexcept {
        return value.kind() == Value::Kind::Array || value.kind() == Value::Kind::Dictionary;
    }
    static bool holdsContainers(const Dictionary &dictionary) noexcept {
        const Dictionary::Entry *slots = dictionary.slots();
        for (std::size_t i = 0; i < dictionary.slotCount_; ++i) {
            if (isContainer(slots[i].value)) {
                return true;
            }
        }
        return false;
    }
    static bool holdsContainers(const Value &value) noexcept {
        if (const Array *array = value.array()) {
            return !array->empty(); // its elements are looked at when its turn comes
        }
        const Dictionary *dictionary = value.dictionary();
        return dictionary != nullptr && holdsContainers(*dictionary);
    }

    std::vector<Value> pending_;
};

} // namespace pelluvia
