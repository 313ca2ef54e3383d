// SPDX-License-Identifier: MIT

#include <Pelluvia/values/Dictionary.h>

#include <Pelluvia/values/internal/ContainerRelease.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

namespace pelluvia {

namespace {

void *allocate(std::size_t size) {
    void *memory = std::malloc(size); // NOLINT(cppcoreguidelines-no-malloc)
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

} // namespace

/// The slots of an ordinary dictionary stand behind their number, in one allocation.
struct Dictionary::Block {
    std::uint64_t capacity;

    [[nodiscard]] Entry *slots() noexcept { return reinterpret_cast<Entry *>(this + 1); } // NOLINT
    [[nodiscard]] static Block *of(Entry *slots) noexcept {
        return reinterpret_cast<Block *>(slots) - 1; // NOLINT(*-reinterpret-cast)
    }
    [[nodiscard]] static Block *make(std::size_t capacity) {
        return new (allocate(sizeof(Block) + capacity * sizeof(Entry))) Block{capacity};
    }
    static void free(Block *block) noexcept { std::free(block); } // NOLINT
};

void *Dictionary::operator new(std::size_t size) {
    return allocate(size);
}

void Dictionary::operator delete(void *memory) noexcept {
    std::free(memory);
} // NOLINT

Dictionary::Dictionary(std::initializer_list<Entry> entries) : Dictionary() {
    moveTo(entries.size());
    for (const Entry &entry : entries) {
        set(entry.key, entry.value);
    }
}

Dictionary::Dictionary(const Dictionary &other) : Dictionary() {
    copyFrom(other);
}

Dictionary &Dictionary::operator=(const Dictionary &other) {
    Dictionary copy(other); // first: `other` may be this one, or live in a value of ours
    removeAll();
    std::swap(slots_, copy.slots_); // neither is compact now
    std::swap(slotCount_, copy.slotCount_);
    return *this;
}

Dictionary::~Dictionary() {
    removeAll();
    if (slots_ != nullptr) {
        Block::free(Block::of(slots_));
    }
}

void Dictionary::copyFrom(const Dictionary &other) {
    if (capacity() < other.size()) {
        moveTo(other.size());
    }
    for (Entry &&entry : other) {
        append(std::move(entry.key), std::move(entry.value));
    }
}

Ref<Dictionary> Dictionary::wrappingBytes(const void *bytes, const char *encoding,
                                          const Dictionary *entries) {
    std::size_t count = 0; // of entries beside the record
    if (entries != nullptr) {
        count = entries->size() - (entries->contains(recordKey) ? 1 : 0);
    }
    if (count >= notCompact) {
        auto ordinary = Ref<Dictionary>::make(*entries);
        ordinary->set(recordKey, Value::wrappingBytes(bytes, maxRecordSize, encoding));
        return ordinary;
    }

    void *memory = allocate(sizeof(Dictionary) + maxRecordSize + count * sizeof(Entry));
    Ref<Dictionary> made(new (memory) Dictionary);
    made->recordEncoding_ = encoding;
    made->recordPosition_ = static_cast<std::uint8_t>(count);
    made->compactCapacity_ = static_cast<std::uint8_t>(count);
    std::memcpy(made->recordBytes(), bytes, maxRecordSize);
    if (entries == nullptr) {
        return made;
    }
    if (entries->isCompact()) {
        made->recordPosition_ = entries->recordPosition_;
    }
    const Entry *slots = entries->slots();
    for (std::size_t i = 0; i < entries->slotCount_; ++i) {
        if (slots[i].key == recordKey) {
            made->recordPosition_ = static_cast<std::uint8_t>(i);
        } else {
            made->append(slots[i].key, slots[i].value);
        }
    }
    return made;
}

Value Dictionary::find(const Key &key) const {
    if (isCompact() && key == recordKey) {
        return Value::wrappingBytes(recordBytes(), maxRecordSize, recordEncoding_);
    }
    const Value *value = stored(key);
    return value != nullptr ? *value : Value();
}

bool Dictionary::contains(const Key &key) const noexcept {
    return (isCompact() && key == recordKey) || stored(key) != nullptr;
}

Dictionary::Entry Dictionary::at(std::size_t position) const {
    if (isCompact() && position == recordPosition_) {
        return {recordKey, find(recordKey)};
    }
    return slots()[isCompact() && position > recordPosition_ ? position - 1 : position];
}

bool Dictionary::set(Key key, Value value) {
    if (value.isNil()) {
        remove(key);
        return true;
    }
    if (isCompact() && key == recordKey) {
        moveTo(size()); // in an ordinary dictionary any value can take the record's place
    }
    if (Entry *slot = slotOf(key)) {
        slot->value = std::move(value);
        return true;
    }
    if (size() >= (key.isKnown() ? mostSlots : maxSize)) {
        return false;
    }
    if (slotCount_ == capacity()) {
        constexpr std::size_t least = 4;
        moveTo(std::max(least, size() * 2));
    }
    append(std::move(key), std::move(value));
    return true;
}

void Dictionary::remove(const Key &key) {
    if (isCompact() && key == recordKey) {
        moveTo(size());
    }
    Entry *slot = slotOf(key);
    if (slot == nullptr) {
        return;
    }
    const Entry removed = std::move(*slot); // dies last: it may own what the key belongs to
    Entry *end = slots() + slotCount_;
    std::move(slot + 1, end, slot);
    std::destroy_at(end - 1);
    --slotCount_;
    if (isCompact() && slot - slots() < recordPosition_) {
        --recordPosition_;
    }
}

void Dictionary::removeAll() noexcept {
    ContainerRelease release;
    release.takeAll(*this);
    std::destroy_n(slots(), slotCount_);
    slotCount_ = 0;
    if (isCompact()) {
        recordPosition_ = notCompact;
        slots_ = nullptr;
    }
}

std::size_t Dictionary::capacity() const noexcept {
    if (isCompact()) {
        return compactCapacity_;
    }
    return slots_ != nullptr ? Block::of(slots_)->capacity : 0;
}

void Dictionary::append(Key key, Value value) noexcept {
    new (slots() + slotCount_) Entry(std::move(key), std::move(value));
    ++slotCount_;
}

void Dictionary::moveTo(std::size_t capacity) {
    const std::size_t count = size();
    const Value record = isCompact() ? find(recordKey) : Value();
    Block *block = Block::make(std::min(capacity, mostSlots));
    Entry *source = slots();
    for (std::size_t position = 0; position < count; ++position) {
        if (isCompact() && position == recordPosition_) {
            new (block->slots() + position) Entry(recordKey, record);
        } else {
            new (block->slots() + position) Entry(std::move(*source));
            std::destroy_at(source++);
        }
    }
    if (!isCompact() && slots_ != nullptr) {
        Block::free(Block::of(slots_));
    }
    recordPosition_ = notCompact;
    slotCount_ = static_cast<std::uint16_t>(count);
    slots_ = block->slots();
}

} // namespace pelluvia
