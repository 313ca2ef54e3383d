// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/scan/TagMemory.h>

#include <algorithm>
#include <functional>

namespace pelluvia::xml::scan {

namespace {

/// A memory that has found fewer tags than this for each one that it has not is of no use.
constexpr std::uint64_t leastHits = 4;
/// Tags that pass unlearned the first time.
constexpr std::uint64_t firstPause = 2000;

constexpr std::size_t mostAttributes = 12;

std::size_t distance(const char *begin, const char *end) noexcept {
    return static_cast<std::size_t>(end - begin);
}

void set(Phrase::Literal &literal, const char *begin, const char *end) noexcept {
    literal.size = distance(begin, end);
    std::copy(begin, end, literal.bytes.begin());
}

bool fits(const char *begin, const char *end) noexcept {
    return distance(begin, end) <= Phrase::Literal::longest;
}

/// What a tag that stands at `begin` leads from and to; null is outside the root.
void setFrame(Phrase &phrase, const char *begin, const Element *outside, Element *inside) noexcept {
    if (outside != nullptr && outside->wantsText) {
        phrase.blankSize = static_cast<std::uint8_t>(distance(begin, skip(blank, begin)));
    }
    phrase.inside = inside;
    phrase.wantsText = inside != nullptr && inside->wantsText;
}

/// Puts a follower in front, from where it was or in place of the one that is last.
void follows(Phrase &previous, Phrase *phrase) noexcept {
    auto &followers = previous.followers;
    auto place = std::find(followers.begin(), followers.end() - 1, phrase);
    *place = phrase;
    std::rotate(followers.begin(), place, place + 1);
}

/// `last` and directly behind it `next`, as one; null if that is too long, or they would have two
/// tags with attributes.
std::unique_ptr<Phrase> joinedOf(const Phrase &last, const Phrase &next) {
    const bool hasValues = !last.literals.empty();
    const Phrase::Literal &seam = hasValues ? last.literals.back() : last.literal;
    const std::size_t size = seam.size + next.literal.size;
    if (size > Phrase::Literal::longest || next.blankSize != 0 ||
        (hasValues && !next.literals.empty())) {
        return nullptr;
    }
    auto joined = std::make_unique<Phrase>(last);
    Phrase::Literal &literal = hasValues ? joined->literals.back() : joined->literal;
    std::copy_n(next.literal.bytes.begin(), next.literal.size, literal.bytes.begin() + seam.size);
    literal.size = size;
    // Places are counted from the side of the values that they are on: what is in front of them
    // stays there, and what is not is so when values come only now.
    const auto sizeOfLast = static_cast<std::int32_t>(last.literal.size);
    const auto sizeOfNext = static_cast<std::int32_t>(next.literal.size);
    for (Phrase::Event &event : joined->events) {
        if (!next.literals.empty()) {
            event.isFromBegin = true;
            event.offset += sizeOfLast;
        } else if (!event.isFromBegin) {
            event.offset -= sizeOfNext;
        }
    }
    for (Phrase::Event event : next.events) {
        event.offset += event.isFromBegin ? sizeOfLast : 0;
        joined->events.push_back(event);
    }
    if (!next.literals.empty()) {
        joined->literals = next.literals;
        joined->attributes = next.attributes;
    }
    joined->names.clear(); // the views are on those of the tag, which stays
    joined->tags += next.tags;
    joined->hasStart = joined->hasStart || next.hasStart;
    joined->inside = next.inside;
    joined->wantsText = next.wantsText;
    joined->followers = next.followers;
    joined->neighbour = nullptr;
    joined->meetings = 0;
    joined->canJoin = true;
    return joined;
}

/// Whether the tag can be compared as a whole; writes its text with a zero for each value.
bool write(const char *begin, const StartTag &tag, std::string &text) {
    text.clear();
    if (tag.attributes.size() > mostAttributes) {
        return false;
    }
    const char *from = begin;
    for (const StartTag::Attribute &each : tag.attributes) {
        if (!fits(from, each.begin)) {
            return false;
        }
        text.append(from, distance(from, each.begin)).push_back('\0');
        from = each.end;
    }
    text.append(from, distance(from, tag.end));
    return fits(from, tag.end);
}

} // namespace

std::size_t TagMemory::Hash::operator()(const Key &key) const {
    return std::hash<std::string_view>()(key.text) ^
           (std::hash<const void *>()(key.element) * 0x9E3779B97F4A7C15U);
}

bool TagMemory::isLearning() noexcept {
    if (toPass_ != 0) {
        --toPass_;
        return false;
    }
    ++misses_;
    return true;
}

Phrase *TagMemory::learnStart(Phrase *previous, const char *begin, Element *element,
                              const StartTag &tag) {
    if (!write(begin, tag, key_.text)) {
        return nullptr;
    }
    key_.element = element;
    return remember(previous, [&] { return make(begin, element, tag); });
}

Phrase *TagMemory::learnEnd(Phrase *previous, const char *begin, const char *end,
                            Element *element) {
    if (!fits(begin, end)) {
        return nullptr;
    }
    key_.text.assign(begin, end);
    key_.element = element;
    return remember(previous, [&] {
        auto phrase = std::make_unique<Phrase>();
        setFrame(*phrase, begin, element, element->parent);
        set(phrase->literal, begin, end);
        addEnd(*phrase, element);
        return phrase;
    });
}

void TagMemory::addStart(Phrase &phrase, const Element *element, const StartTag &tag) const {
    ++phrase.tags;
    phrase.hasStart = true;
    if (element->interest != XMLInterest::nothing) {
        phrase.events.push_back(
            {.element = element,
             .hasAttributes = !startsOnly_ && !tag.attributes.empty(),
             .hasDeclarations = !startsOnly_ && !element->declarations.empty(),
             .offset = -static_cast<std::int32_t>(distance(tag.close, tag.end))});
    }
}

void TagMemory::addEnd(Phrase &phrase, const Element *element) const {
    if (startsOnly_) {
        return;
    }
    ++phrase.tags;
    if (element->interest != XMLInterest::nothing) {
        phrase.events.push_back({.element = element, .isStart = false});
    }
}

template <class Make>
Phrase *TagMemory::remember(Phrase *previous, Make make) {
    auto found = tags_.find(key_);
    if (found == tags_.end()) {
        found = tags_.emplace(key_, make()).first;
    }
    Phrase *const phrase = found->second.get();
    if (previous != nullptr) {
        follows(*previous, phrase);
    }
    return phrase;
}

void TagMemory::join(Phrase &before, Phrase &last, Phrase &next) {
    if (isFull()) {
        return; // all is forgotten as soon as something new comes
    }
    auto &joined = joined_[{&last, &next}];
    if (joined == nullptr) {
        joined = joinedOf(last, next);
    }
    if (joined == nullptr) {
        last.canJoin = false;
    } else {
        follows(before, joined.get());
    }
}

std::unique_ptr<Phrase> TagMemory::make(const char *begin, Element *element,
                                        const StartTag &tag) const {
    auto phrase = std::make_unique<Phrase>();
    setFrame(*phrase, begin, element->parent, tag.isEmpty ? element->parent : element);
    addStart(*phrase, element, tag);
    if (tag.isEmpty) {
        addEnd(*phrase, element);
    }
    phrase->literals.resize(tag.attributes.size());
    phrase->attributes.resize(tag.attributes.size());
    const auto endOfLiteral = [&](std::size_t i) {
        return i < tag.attributes.size() ? tag.attributes[i].begin : tag.end;
    };
    set(phrase->literal, begin, endOfLiteral(0));
    for (const StartTag::Attribute &each : tag.attributes) {
        phrase->names.append(each.name.whole);
    }
    std::string_view names = phrase->names;
    for (std::size_t i = 0; i < tag.attributes.size(); ++i) {
        const QualifiedName &name = tag.attributes[i].name;
        set(phrase->literals[i], tag.attributes[i].end, endOfLiteral(i + 1));
        XMLAttribute &attribute = phrase->attributes[i];
        attribute.prefix = names.substr(0, name.prefix.size());
        attribute.localName =
            names.substr(name.whole.size() - name.local.size(), name.local.size());
        attribute.nameNumber = vocabulary_.name(name.local);
        names.remove_prefix(name.whole.size());
    }
    return phrase;
}

void TagMemory::forget() noexcept {
    joined_.clear();
    tags_.clear();
    if (toPass_ != 0) {
        return; // it had not begun anew
    }
    const bool wasOfUse = hits_ >= leastHits * misses_;
    pause_ = wasOfUse ? 0 : std::max(firstPause, 2 * pause_);
    toPass_ = pause_;
    hits_ = misses_ = 0;
}

} // namespace pelluvia::xml::scan
