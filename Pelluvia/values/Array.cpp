// SPDX-License-Identifier: MIT

#include <Pelluvia/values/Array.h>

#include <Pelluvia/values/internal/ContainerRelease.h>

namespace pelluvia {

Array::Array(std::initializer_list<Value> values) {
    for (const Value &value : values) {
        append(value);
    }
}

Array &Array::operator=(const Array &other) {
    Array copy(other); // first: `other` may be this one, or live in a value of ours
    dictionaries_.swap(copy.dictionaries_);
    values_.swap(copy.values_);
    return *this;
}

Array::~Array() {
    ContainerRelease release;
    release.takeAll(*this);
}

void Array::append(Ref<Dictionary> dictionary) {
    if (values_.empty()) {
        dictionaries_.push_back(std::move(dictionary));
    } else {
        values_.emplace_back(std::move(dictionary));
    }
}

void Array::append(Value value) {
    if (values_.empty() && value.kind() == Value::Kind::Dictionary) {
        dictionaries_.emplace_back(value.dictionary());
        return;
    }
    if (!dictionaries_.empty()) {
        std::vector<Value> values;
        values.reserve(dictionaries_.size() + 1);
        for (Ref<Dictionary> &dictionary : dictionaries_) {
            values.emplace_back(std::move(dictionary));
        }
        std::vector<Ref<Dictionary>>().swap(dictionaries_); // frees the memory, too
        values_ = std::move(values);
    }
    values_.push_back(std::move(value));
}

void Array::removeLast() {
    if (values_.empty()) {
        dictionaries_.pop_back();
    } else {
        values_.pop_back();
    }
}

} // namespace pelluvia
