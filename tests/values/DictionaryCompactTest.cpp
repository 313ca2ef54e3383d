// SPDX-License-Identifier: MIT

// Dictionaries made by `wrapping`: one block of memory that behaves like any other dictionary.

#include <Pelluvia/values/Array.h>
#include <Pelluvia/values/Dictionary.h>

#include <cstring>
#include <gtest/gtest.h>
#include <malloc.h>
#include <string>
#include <utility>

namespace pelluvia {
namespace {

struct Record {
    double a, b, c;
    std::int64_t d, e;
    bool operator==(const Record &) const = default;
};

struct OtherRecord {
    char bytes[Dictionary::maxRecordSize];
};

} // namespace

template <>
struct RecordEncoding<Record> {
    static constexpr const char *value = "{?=dddqq}";
};
template <>
struct RecordEncoding<OtherRecord> {
    static constexpr const char *value = "{?=[40c]}";
};

namespace {

constexpr Record record = {1.5, -2.5, 3.5, 4, -5};
constexpr Record other = {9, 8, 7, 6, 5};
constexpr Key recordKey = Dictionary::recordKey;

std::string keys(const Dictionary &dictionary) {
    std::string text;
    for (const Dictionary::Entry &entry : dictionary) {
        text.append(entry.key.name()).append(",");
    }
    return text;
}

/// Entries under "a", "b", "c" …, with something under the record's key at a position, if asked.
Dictionary entries(int count, int recordAt = -1) {
    Dictionary made;
    for (int i = 0; i < count; ++i) {
        if (i == recordAt) {
            made.set(recordKey, Value("not a record"));
        } else {
            made.set(Key(std::string(1, static_cast<char>('a' + i))), Value(i));
        }
    }
    return made;
}

TEST(DictionaryCompact, OfNothingHasTheRecordOnly) {
    const Ref<Dictionary> made = Dictionary::wrapping(record, nullptr);
    EXPECT_EQ(made->size(), 1U);
    EXPECT_FALSE(made->empty());
    EXPECT_EQ(keys(*made), "point,");
    ASSERT_NE(made->record<Record>(recordKey), nullptr);
    EXPECT_EQ(*made->record<Record>(recordKey), record);
    EXPECT_EQ(*made->find(recordKey).unwrap<Record>(), record);
    EXPECT_EQ(*made->at(0).value.unwrap<Record>(), record);
    const Ref<Dictionary> again = Dictionary::wrapping(record, made.get());
    EXPECT_EQ(keys(*again), "point,");
}

TEST(DictionaryCompact, TheRecordIsOfItsTypeOnly) {
    const Ref<Dictionary> made = Dictionary::wrapping(record, nullptr);
    EXPECT_EQ(made->record<OtherRecord>(recordKey), nullptr);
    EXPECT_EQ(made->record<int>(recordKey), nullptr);
    EXPECT_EQ(made->find(recordKey).unwrap<OtherRecord>(), nullptr);
    EXPECT_FALSE(made->number(recordKey));
    EXPECT_FALSE(made->string(recordKey));
    EXPECT_EQ(made->array(recordKey), nullptr);
    EXPECT_EQ(made->dictionary(recordKey), nullptr);
    EXPECT_EQ(made->record<Record>(Key("hr")), nullptr);
}

TEST(DictionaryCompact, TheRecordComesLastOrInThePlaceOfAnEarlierValue) {
    const Dictionary none = entries(3);
    const Ref<Dictionary> last = Dictionary::wrapping(record, &none);
    EXPECT_EQ(keys(*last), "a,b,c,point,");
    const std::string expected[] = {"point,b,c,d,", "a,point,c,d,", "a,b,point,d,", "a,b,c,point,"};
    for (int position = 0; position < 4; ++position) {
        const Dictionary given = entries(4, position);
        const Ref<Dictionary> made = Dictionary::wrapping(record, &given);
        const auto at = static_cast<std::size_t>(position);
        EXPECT_EQ(keys(*made), expected[at]);
        EXPECT_EQ(*made->record<Record>(recordKey), record);
        // And again, from a compact one and from its ordinary copy.
        const Ref<Dictionary> anew = Dictionary::wrapping(other, made.get());
        EXPECT_EQ(keys(*anew), expected[at]);
        const Dictionary copy(*made);
        EXPECT_EQ(keys(copy), expected[at]);
        EXPECT_EQ(*copy.record<Record>(recordKey), record);
        const Ref<Dictionary> again = Dictionary::wrapping(other, &copy);
        EXPECT_EQ(keys(*again), expected[at]);
        EXPECT_EQ(*again->record<Record>(recordKey), other);
    }
}

TEST(DictionaryCompact, RemovingAroundTheRecordKeepsTheOrder) {
    for (int position = 0; position < 5; ++position) {
        for (int removed = 0; removed < 5; ++removed) {
            const Dictionary given = entries(5, position);
            const Ref<Dictionary> made = Dictionary::wrapping(record, &given);
            const Key key = made->at(static_cast<std::size_t>(removed)).key;
            std::string expected = keys(*made);
            expected.erase(expected.find(std::string(key.name()) + ","), key.name().size() + 1);
            made->remove(key);
            EXPECT_EQ(keys(*made), expected);
            EXPECT_EQ(made->contains(recordKey), removed != position);
            made->set(Key("behind"), Value(7));
            EXPECT_EQ(keys(*made), expected + "behind,");
            EXPECT_EQ(made->number(Key("behind"))->intValue(), 7);
        }
    }
}

TEST(DictionaryCompact, AnEntryIsReplacedInPlace) {
    const Dictionary given = entries(3, 1);
    const Ref<Dictionary> made = Dictionary::wrapping(record, &given);
    made->set(Key("c"), Value("new"));
    EXPECT_EQ(keys(*made), "a,point,c,");
    EXPECT_EQ(made->string(Key("c")), "new");
    EXPECT_EQ(*made->record<Record>(recordKey), record);
}

TEST(DictionaryCompact, AnyValueCanTakeTheRecordsPlace) {
    const Dictionary given = entries(3, 1);
    for (const Value &value : {Value(5), Value("text"), Value(Ref<Array>::make())}) {
        const Ref<Dictionary> made = Dictionary::wrapping(record, &given);
        made->set(recordKey, value);
        EXPECT_EQ(keys(*made), "a,point,c,");
        EXPECT_EQ(made->find(recordKey).kind(), value.kind());
        EXPECT_EQ(made->record<Record>(recordKey), nullptr);
        made->set(recordKey, Value());
        EXPECT_EQ(keys(*made), "a,c,");
    }
    const Ref<Dictionary> made = Dictionary::wrapping(record, &given);
    made->set(recordKey, Value::wrapping(other));
    EXPECT_EQ(*made->record<Record>(recordKey), other);
    EXPECT_EQ(keys(*made), "a,point,c,");
}

TEST(DictionaryCompact, TheRecordCanBeRemovedAndComesBackBehind) {
    const Dictionary given = entries(3, 1);
    const Ref<Dictionary> made = Dictionary::wrapping(record, &given);
    const Value kept = made->find(recordKey);
    made->remove(recordKey);
    EXPECT_EQ(keys(*made), "a,c,");
    EXPECT_TRUE(made->find(recordKey).isNil());
    made->set(recordKey, kept);
    EXPECT_EQ(keys(*made), "a,c,point,");
    EXPECT_EQ(*made->record<Record>(recordKey), record);
}

TEST(DictionaryCompact, IsTheSameObjectAfterItHasGrown) {
    const Ref<Dictionary> made = Dictionary::wrapping(record, nullptr);
    const Dictionary *before = made.get();
    for (int i = 0; i < 300; ++i) {
        made->set(Key(std::to_string(i).append("k")), Value(i));
    }
    EXPECT_EQ(made.get(), before);
    EXPECT_EQ(made->size(), 301U);
    EXPECT_EQ(made->at(0).key, recordKey);
    EXPECT_EQ(*made->record<Record>(recordKey), record);
    EXPECT_EQ(made->number(Key("299k"))->intValue(), 299);
}

TEST(DictionaryCompact, IsEmptyAfterRemoveAll) {
    const Dictionary given = entries(3);
    const Ref<Dictionary> made = Dictionary::wrapping(record, &given);
    made->removeAll();
    EXPECT_TRUE(made->empty());
    EXPECT_FALSE(made->contains(recordKey));
    EXPECT_EQ(made->begin(), made->end());
    made->set(Key("hr"), Value(1));
    EXPECT_EQ(keys(*made), "hr,");
    made->removeAll();
    EXPECT_TRUE(made->empty());
}

TEST(DictionaryCompact, ValuesOutliveIt) {
    Dictionary given;
    given.set(Key("text"), Value("kept"));
    given.set(Key("array"), Value(Ref<Array>::make()));
    Ref<Dictionary> made = Dictionary::wrapping(record, &given);
    given.removeAll();
    const Value wrapped = made->find(recordKey);
    const Dictionary::Entry text = made->at(0);
    const Value array = made->find(Key("array"));
    made = nullptr;
    EXPECT_EQ(*wrapped.unwrap<Record>(), record);
    EXPECT_EQ(text.key.name(), "text");
    EXPECT_EQ(text.value.string(), "kept");
    EXPECT_TRUE(array.array()->empty());
}

TEST(DictionaryCompact, KeepsAnyNumberOfEntries) {
    for (const int count : {0, 1, 253, 254, 255, 256, 300}) {
        for (const int recordAt : {-1, 0, count / 2, count - 1}) {
            Dictionary given;
            std::string expected;
            for (int i = 0; i < count; ++i) {
                const std::string name = i == recordAt ? "point" : std::to_string(i).append("k");
                given.set(Key(name), Value(i));
                expected += name + ",";
            }
            if (!given.contains(recordKey)) {
                expected += "point,";
            }
            const Ref<Dictionary> made = Dictionary::wrapping(record, &given);
            ASSERT_EQ(keys(*made), expected);
            ASSERT_EQ(*made->record<Record>(recordKey), record);
            const Ref<Dictionary> again = Dictionary::wrapping(other, made.get());
            ASSERT_EQ(keys(*again), expected);
            ASSERT_EQ(*again->record<Record>(recordKey), other);
        }
    }
}

TEST(DictionaryCompact, CanBeAssignedAndAssignedTo) {
    const Dictionary given = entries(2);
    const Ref<Dictionary> made = Dictionary::wrapping(record, &given);
    Dictionary ordinary;
    ordinary.set(Key("gone"), Value(1));
    ordinary = *made;
    EXPECT_EQ(keys(ordinary), "a,b,point,");
    const Ref<Dictionary> replacement = Dictionary::wrapping(other, &ordinary);
    *made = *replacement;
    EXPECT_EQ(keys(*made), "a,b,point,");
    EXPECT_EQ(*made->record<Record>(recordKey), other);
    *made = Dictionary();
    EXPECT_TRUE(made->empty());
    *made = *made;
    EXPECT_TRUE(made->empty());
}

TEST(DictionaryCompact, ACopyOfOneIsAsSmallAsTheFirst) {
    for (int count = 0; count < 6; ++count) {
        const Dictionary given = entries(count);
        const Ref<Dictionary> first = Dictionary::wrapping(record, &given);
        const Ref<Dictionary> second = Dictionary::wrapping(record, first.get());
        EXPECT_EQ(::malloc_usable_size(first.get()), ::malloc_usable_size(second.get())) << count;
    }
}

} // namespace
} // namespace pelluvia
