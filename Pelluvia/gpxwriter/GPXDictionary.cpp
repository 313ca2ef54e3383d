// SPDX-License-Identifier: MIT

#include <Pelluvia/gpxwriter/GPXDictionary.h>

#include <cerrno>
#include <memory>
#include <new>
#include <string_view>

namespace pelluvia {

namespace {

/// Nothing may be thrown into C.
template <class Given>
int setEntry(Dictionary *dictionary, const char *key, Given given) noexcept {
    if (dictionary == nullptr || key == nullptr) {
        return EINVAL;
    }
    try {
        return dictionary->set(Key(key), Value(given)) ? 0 : ENOMEM;
    } catch (const std::bad_alloc &) {
        return ENOMEM;
    }
}

} // namespace

GPXDictionary *GPXDictionaryCreate() {
    try {
        return Ref<Dictionary>::make().leak();
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
}

void GPXDictionaryDestroy(GPXDictionary *dictionary) {
    const Ref<Dictionary> owned = Ref<Dictionary>::adopt(dictionary); // what Create gave away
}

int GPXDictionarySetInt(GPXDictionary *dictionary, const char *key, std::int64_t value) {
    return setEntry(dictionary, key, value);
}

int GPXDictionarySetDouble(GPXDictionary *dictionary, const char *key, double value) {
    return setEntry(dictionary, key, value);
}

int GPXDictionarySetFloat(GPXDictionary *dictionary, const char *key, float value) {
    return setEntry(dictionary, key, value);
}

int GPXDictionarySetString(GPXDictionary *dictionary, const char *key, const char *value) {
    if (value != nullptr) {
        return setEntry(dictionary, key, std::string_view(value));
    }
    if (dictionary == nullptr || key == nullptr) {
        return EINVAL;
    }
    try {
        dictionary->remove(Key(key));
        return 0;
    } catch (const std::bad_alloc &) { // of a key that was never used before
        return ENOMEM;
    }
}

void GPXDictionaryRemoveAll(GPXDictionary *dictionary) {
    if (dictionary != nullptr) {
        dictionary->removeAll();
    }
}

GPXKey *GPXKeyCreate(const char *name) {
    if (name == nullptr) {
        return nullptr;
    }
    try {
        return std::make_unique<Key>(name).release();
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
}

void GPXKeyDestroy(GPXKey *key) {
    const std::unique_ptr<Key> owned(key);
}

} // namespace pelluvia
