// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/calllog/internal/CallLine.h>

#include <utility>

namespace pelluvia {

bool CallLine::add(CallField field, Value value) {
    std::optional<Value> &place = fields_[static_cast<std::size_t>(field)];
    if (place) {
        return false;
    }
    place = std::move(value);
    return true;
}

} // namespace pelluvia
