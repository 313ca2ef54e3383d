// SPDX-License-Identifier: MIT

// Dictionaries compared with a plain list of pairs, over random sequences of everything that can be
// done with them.

#include <Pelluvia/values/Dictionary.h>

#include <Pelluvia/values/Array.h>

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <tests/support/Chance.h>
#include <utility>
#include <vector>

namespace pelluvia {
namespace {

/// A record as long as a point.
struct Record {
    std::int64_t fields[5];
};

} // namespace

template <>
struct RecordEncoding<Record> {
    static constexpr const char *value = "{?=[5q]}";
};

namespace {

bool same(const Value &a, const Value &b) {
    if (a.kind() != b.kind()) {
        return false;
    }
    switch (a.kind()) {
    case Value::Kind::None:
        return true;
    case Value::Kind::String:
        return a.string() == b.string();
    case Value::Kind::Record:
        return std::memcmp(a.unwrap<Record>(), b.unwrap<Record>(), sizeof(Record)) == 0;
    case Value::Kind::Array:
        return a.array() == b.array();
    case Value::Kind::Dictionary:
        return a.dictionary() == b.dictionary();
    default:
        return a.number()->doubleValue() == b.number()->doubleValue();
    }
}

/// What a dictionary should do, written plainly.
class Model {
  public:
    [[nodiscard]] Value find(const std::string &key) const {
        for (const auto &[name, value] : pairs) {
            if (name == key) {
                return value;
            }
        }
        return Value();
    }
    void set(const std::string &key, Value value) {
        if (value.isNil()) {
            return remove(key);
        }
        for (auto &[name, old] : pairs) {
            if (name == key) {
                old = std::move(value);
                return;
            }
        }
        pairs.emplace_back(key, std::move(value));
    }
    void remove(const std::string &key) {
        std::erase_if(pairs, [&key](const auto &pair) { return pair.first == key; });
    }

    std::vector<std::pair<std::string, Value>> pairs;
};

/// Asks the dictionary in every way there is.
void expectSame(const Dictionary &dictionary, const Model &model) {
    ASSERT_EQ(dictionary.size(), model.pairs.size());
    ASSERT_EQ(dictionary.empty(), model.pairs.empty());
    std::size_t position = 0;
    for (const Dictionary::Entry &entry : dictionary) {
        const auto &[name, value] = model.pairs[position];
        ASSERT_EQ(entry.key.name(), name) << "position " << position;
        ASSERT_TRUE(same(entry.value, value)) << name;
        ASSERT_EQ(dictionary.at(position).key, entry.key);
        const Key key(name);
        ASSERT_TRUE(dictionary.contains(key));
        ASSERT_TRUE(same(dictionary.find(key), value));
        ASSERT_EQ(dictionary.string(key), value.string());
        ASSERT_EQ(dictionary.number(key).has_value(), value.number().has_value());
        ASSERT_EQ(dictionary.array(key), value.array());
        ASSERT_EQ(dictionary.dictionary(key), value.dictionary());
        ASSERT_EQ(dictionary.record<Record>(key) != nullptr, value.kind() == Value::Kind::Record);
        ASSERT_EQ(dictionary.record<int>(key), nullptr);
        ++position;
    }
    ASSERT_FALSE(dictionary.contains(Key("never set")));
    ASSERT_TRUE(dictionary.find(Key("never set")).isNil());
}

/// A few dictionaries and their models, and one random step after the other.
class Machine {
  public:
    explicit Machine(std::uint64_t seed) : random_(seed) {
        for (std::size_t i = 0; i < count; ++i) {
            dictionaries_.push_back(Ref<Dictionary>::make());
            models_.emplace_back();
        }
    }

    void step() {
        const std::size_t to = below(count);
        const std::size_t from = below(count);
        Dictionary &dictionary = *dictionaries_[to];
        Model &model = models_[to];
        const std::string name = key();
        switch (below(16)) {
        case 0:
            dictionary.removeAll();
            model.pairs.clear();
            break;
        case 1: // a copy, a new object
            dictionaries_[to] = Ref<Dictionary>::make(*dictionaries_[from]);
            models_[to] = Model(models_[from]);
            break;
        case 2: // an assignment, also to itself
            dictionary = *dictionaries_[from];
            model = Model(models_[from]);
            break;
        case 3:
        case 4:
            wrap(to, from);
            break;
        case 5:
        case 6:
        case 7:
            dictionary.remove(Key(name));
            model.remove(name);
            break;
        case 8: { // from one place to another
            const std::string source = key();
            dictionary.set(Key(name), dictionaries_[from]->find(Key(source)));
            model.set(name, models_[from].find(source));
            break;
        }
        default: {
            const Value made = value();
            dictionary.set(Key(name), made);
            model.set(name, made);
        }
        }
    }
    void expectAllSame() const {
        for (std::size_t i = 0; i < count; ++i) {
            expectSame(*dictionaries_[i], models_[i]);
        }
    }

  private:
    static constexpr std::size_t count = 4;

    std::size_t below(std::size_t end) { return static_cast<std::size_t>(random_() % end); }

    std::string key() {
        static const std::vector<std::string> names = {"point",   "points", "hr", "temp",
                                                       "cadence", "own",    "",   "a b"};
        return below(4) == 0 ? std::to_string(below(20)).append("key ")
                             : names[below(names.size())];
    }
    Value value() {
        switch (below(8)) {
        case 0:
            return Value();
        case 1:
            return Value(static_cast<std::int32_t>(below(100)));
        case 2:
            return Value(static_cast<double>(below(100)) / 8);
        case 3:
            return Value(Ref<Array>::make());
        case 4:
            return Value(Ref<Dictionary>::make());
        case 5:
            return Value::wrapping(record());
        case 6:
            return Value(static_cast<float>(below(100)));
        default:
            return Value(key());
        }
    }
    Record record() {
        Record made{};
        for (std::int64_t &field : made.fields) {
            field = static_cast<std::int64_t>(random_());
        }
        return made;
    }
    void wrap(std::size_t to, std::size_t from) {
        const Record made = record();
        const bool entries = below(4) != 0;
        dictionaries_[to] =
            Dictionary::wrapping(made, entries ? dictionaries_[from].get() : nullptr);
        models_[to] = entries ? Model(models_[from]) : Model();
        models_[to].set("point", Value::wrapping(made));
    }

    testing::Chance random_;
    std::vector<Ref<Dictionary>> dictionaries_;
    std::vector<Model> models_;
};

TEST(DictionaryOrder, AgreesWithAListOfPairs) {
    for (std::uint64_t seed = 0; seed < 200; ++seed) {
        Machine machine(seed);
        for (int step = 0; step < 300; ++step) {
            machine.step();
            machine.expectAllSame();
            ASSERT_FALSE(::testing::Test::HasFatalFailure()) << "seed " << seed << " step " << step;
        }
    }
}

TEST(DictionaryOrder, GrowsFarPastAnyFirstSize) {
    for (const bool compact : {false, true}) {
        Ref<Dictionary> dictionary = compact
                                         ? Dictionary::wrapping(Record{{1, 2, 3, 4, 5}}, nullptr)
                                         : Ref<Dictionary>::make();
        Model model;
        if (compact) {
            model.set("point", Value::wrapping(Record{{1, 2, 3, 4, 5}}));
        }
        for (int i = 0; i < 300; ++i) {
            dictionary->set(Key(std::to_string(i).append("k")), Value(i));
            model.set(std::to_string(i).append("k"), Value(i));
            if (i % 50 == 49 || i < 10) {
                expectSame(*dictionary, model);
            }
        }
        for (int i = 0; i < 300; i += 3) {
            dictionary->remove(Key(std::to_string(i).append("k")));
            model.remove(std::to_string(i).append("k"));
        }
        expectSame(*dictionary, model);
    }
}

TEST(DictionaryOrder, AValueOfItsOwnMayBeSetAnew) {
    Dictionary dictionary;
    dictionary.set(Key("a"), Value("text"));
    dictionary.set(Key("b"), dictionary.find(Key("a")));
    dictionary.set(Key("a"), dictionary.find(Key("a")));
    for (int i = 0; i < 20; ++i) { // through every growth
        dictionary.set(Key(std::to_string(i).append("c")), dictionary.find(Key("b")));
    }
    dictionary.set(Key("a"), dictionary.find(Key("missing")));
    EXPECT_EQ(dictionary.at(0).key.name(), "b");
    EXPECT_EQ(dictionary.string(Key("19c")), "text");
    EXPECT_EQ(dictionary.size(), 21U);
}

TEST(DictionaryOrder, KeepsItselfWhenItIsAssignedToItself) {
    Dictionary dictionary;
    dictionary.set(Key("invented"), Value("text"));
    const Dictionary &itself = dictionary;
    dictionary = itself;
    EXPECT_EQ(dictionary.string(Key("invented")), "text");
}

TEST(DictionaryOrder, CanBeReplacedByWhatStandsInsideIt) {
    Dictionary dictionary;
    auto inner = Ref<Dictionary>::make();
    inner->set(Key("deep"), Value("text"));
    const Dictionary *borrowed = inner.get();
    dictionary.set(Key("inner"), Value(std::move(inner)));
    dictionary = *borrowed;
    EXPECT_EQ(dictionary.size(), 1U);
    EXPECT_EQ(dictionary.string(Key("deep")), "text");
}

TEST(DictionaryOrder, ACopySharesContainersAndNothingElse) {
    Dictionary original;
    original.set(Key("array"), Value(Ref<Array>::make()));
    original.set(Key("number"), Value(1));
    Dictionary copy(original);
    copy.set(Key("number"), Value(2));
    copy.array(Key("array"))->append(Value(3));
    EXPECT_EQ(original.number(Key("number"))->intValue(), 1);
    EXPECT_EQ(original.array(Key("array"))->size(), 1U);
    const Dictionary moved(std::move(copy)); // is a copy: no dictionary is ever left undefined
    EXPECT_EQ(moved.number(Key("number"))->intValue(), 2);
    EXPECT_EQ(copy.number(Key("number"))->intValue(), 2); // NOLINT(bugprone-use-after-move)
}

TEST(DictionaryOrder, ADictionaryThatHoldsItsOwnLastReferenceLetsGoSafely) {
    auto dictionary = Ref<Dictionary>::make();
    Dictionary &borrowed = *dictionary;
    borrowed.set(Key("before"), Value(1));
    borrowed.set(Key("itself"), Value(dictionary));
    borrowed.set(Key("behind"), Value("text"));
    dictionary = nullptr;
    borrowed.remove(Key("itself")); // the last use
}

/// A dictionary that takes no further key of a name of its own. Filled once, since that takes long.
const Dictionary &full() {
    static const Dictionary filled = [] {
        Dictionary made;
        for (std::size_t i = 0; i < Dictionary::maxSize; ++i) {
            made.set(Key(std::to_string(i)), Value(1));
        }
        return made;
    }();
    return filled;
}

TEST(DictionaryOrder, RefusesMoreThanItCanCountByItsResult) {
    Dictionary dictionary = full();
    EXPECT_FALSE(dictionary.set(Key("one more"), Value(1)));
    EXPECT_EQ(dictionary.size(), Dictionary::maxSize);
    EXPECT_FALSE(dictionary.contains(Key("one more")));
    EXPECT_TRUE(dictionary.set(Key("64999"), Value("the last can be replaced")));
    EXPECT_EQ(Dictionary(dictionary).string(Key("64999")), "the last can be replaced");
    EXPECT_TRUE(dictionary.set(Key("one more"), Value())); // is not there
    dictionary.remove(Key("0"));
    EXPECT_TRUE(dictionary.set(Key("one more"), Value(2)));
    EXPECT_EQ(dictionary.at(Dictionary::maxSize - 1).key.name(), "one more");
    dictionary.removeAll();
    EXPECT_TRUE(dictionary.set(Key("again"), Value(3)));
    EXPECT_EQ(dictionary.size(), 1U);
}

TEST(DictionaryOrder, AlwaysHasRoomForKnownKeysAndForTheRecord) {
    Dictionary dictionary = full();
    const Ref<Dictionary> wrapped = Dictionary::wrapping(Record{{1, 2, 3, 4, 5}}, &dictionary);
    ASSERT_NE(wrapped->record<Record>(Dictionary::recordKey), nullptr);
    EXPECT_EQ(wrapped->record<Record>(Dictionary::recordKey)->fields[4], 5);
    EXPECT_EQ(wrapped->size(), Dictionary::maxSize + 1);
    for (const std::string_view name : knownKeyNames) {
        EXPECT_TRUE(dictionary.set(Key(name), Value(name)));
    }
    EXPECT_EQ(dictionary.size(), Dictionary::maxSize + knownKeyNames.size());
    EXPECT_FALSE(dictionary.set(Key("one more"), Value(1)));
    EXPECT_EQ(Dictionary(dictionary).string(Key("hr")), "hr");
    EXPECT_EQ(dictionary.string(Key("POIs")), "POIs");
    EXPECT_EQ(dictionary.number(Key("64999"))->intValue(), 1);
}

} // namespace
} // namespace pelluvia
