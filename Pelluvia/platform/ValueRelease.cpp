#include <Pelluvia/platform/Value.h>

#include <Pelluvia/platform/Array.h>
#include <Pelluvia/platform/Dictionary.h>

#include <utility>

/// \file
/// How values let go of arrays and dictionaries. What they hold may be nested as deeply as the
/// producer of the data liked, so it is taken apart in a loop and not by destructors that call each
/// other.

namespace pelluvia {

/// The last value inside an array or dictionary; null where there is none.
Value *Value::lastInside() const noexcept {
    switch (kind_) {
    case Kind::Array:
        return bits_.array->last();
    case Kind::Dictionary:
        return bits_.dictionary->last();
    default:
        return nullptr;
    }
}

void Value::removeLastInside() const noexcept {
    if (kind_ == Kind::Array) {
        bits_.array->removeLast();
    } else {
        bits_.dictionary->removeLast();
    }
}

/// The last array or dictionary inside one that nobody else owns; what stands behind it is removed.
/// Null where there is none, or where others still need the content.
Value *Value::lastContainerInside() const noexcept {
    const bool ours = kind_ == Kind::Array
                          ? bits_.array->hasOneOwner()
                          : kind_ == Kind::Dictionary && bits_.dictionary->hasOneOwner();
    if (!ours) {
        return nullptr;
    }
    Value *last = lastInside();
    while (last != nullptr && !last->isContainer()) {
        removeLastInside();
        last = lastInside();
    }
    return last;
}

/// Releases the array or dictionary, and before it everything that goes with it, from the
/// innermost. It needs neither stack nor memory: on the way down, the place from which a nested
/// container was taken keeps the container above.
void Value::releaseContainer() const noexcept {
    Value current; // takes this value's ownership over
    current.bits_ = bits_;
    current.kind_ = kind_;
    Value above;
    while (true) {
        if (Value *nested = current.lastContainerInside()) {
            Value inner = std::exchange(*nested, std::move(above));
            above = std::move(current);
            current = std::move(inner);
            continue;
        }
        switch (std::exchange(current.kind_, Kind::Nil)) {
        case Kind::Array:
            current.bits_.array->release();
            break;
        case Kind::Dictionary:
            current.bits_.dictionary->release();
            break;
        default:
            break;
        }
        if (above.isNil()) {
            return;
        }
        current = std::move(above);
        above = std::move(*current.lastInside());
        current.removeLastInside();
    }
}

} // namespace pelluvia
