#include <Pelluvia/platform/Dictionary.h>

#include <algorithm>

namespace pelluvia {

void Dictionary::set(Key key, Value value) {
    if (value.isNil()) {
        return remove(key);
    }
    const auto entry = std::find_if(entries_.begin(), entries_.end(),
                                    [&key](const Entry &each) { return each.key == key; });
    if (entry != entries_.end()) {
        entry->value = std::move(value);
    } else {
        entries_.emplace_back(std::move(key), std::move(value));
    }
}

void Dictionary::remove(const Key &key) {
    const auto entry = std::find_if(entries_.begin(), entries_.end(),
                                    [&key](const Entry &each) { return each.key == key; });
    if (entry != entries_.end()) {
        entries_.erase(entry);
    }
}

} // namespace pelluvia
