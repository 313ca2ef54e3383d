#include <Pelluvia/platform/xml/scan/TagMemory.h>

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

void set(KnownTag::Literal &literal, const char *begin, const char *end) noexcept {
    literal.size = distance(begin, end);
    std::copy(begin, end, literal.bytes.begin());
}

bool fits(const char *begin, const char *end) noexcept {
    return distance(begin, end) <= KnownTag::Literal::longest;
}

void setFrame(KnownTag &known, const char *begin, KnownTag::Kind kind, Element *element) noexcept {
    known.kind = kind;
    known.element = element;
    const Element *const outside = kind == KnownTag::Kind::end ? element : element->parent;
    const Element *const inside = known.inside();
    if (outside != nullptr && outside->wantsText) {
        known.blankSize = static_cast<std::uint8_t>(distance(begin, skip(blank, begin)));
    }
    known.wantsText = inside != nullptr && inside->wantsText;
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

KnownTag *TagMemory::learnStart(KnownTag *previous, const char *begin, Element *element,
                                const StartTag &tag) {
    if (!write(begin, tag, key_.text)) {
        return nullptr;
    }
    key_.element = element;
    return remember(previous, [&] { return make(begin, element, tag); });
}

KnownTag *TagMemory::learnEnd(KnownTag *previous, const char *begin, const char *end,
                              Element *element) {
    if (!fits(begin, end)) {
        return nullptr;
    }
    key_.text.assign(begin, end);
    key_.element = element;
    return remember(previous, [&] {
        auto known = std::make_unique<KnownTag>();
        setFrame(*known, begin, KnownTag::Kind::end, element);
        set(known->literal, begin, end);
        return known;
    });
}

template <class Make>
KnownTag *TagMemory::remember(KnownTag *previous, Make make) {
    auto found = tags_.find(key_);
    if (found == tags_.end()) {
        found = tags_.emplace(key_, make()).first;
    }
    KnownTag *const known = found->second.get();
    if (previous != nullptr) {
        // To the front, from where it was or in place of the one that is last.
        auto &followers = previous->followers;
        auto place = std::find(followers.begin(), followers.end() - 1, known);
        *place = known;
        std::rotate(followers.begin(), place, place + 1);
    }
    return known;
}

std::unique_ptr<KnownTag> TagMemory::make(const char *begin, Element *element,
                                          const StartTag &tag) const {
    auto known = std::make_unique<KnownTag>();
    setFrame(*known, begin, tag.isEmpty ? KnownTag::Kind::empty : KnownTag::Kind::start, element);
    known->closeSize = static_cast<std::uint8_t>(distance(tag.close, tag.end));
    known->literals.resize(tag.attributes.size());
    known->attributes.resize(tag.attributes.size());
    const auto endOfLiteral = [&](std::size_t i) {
        return i < tag.attributes.size() ? tag.attributes[i].begin : tag.end;
    };
    set(known->literal, begin, endOfLiteral(0));
    for (const StartTag::Attribute &each : tag.attributes) {
        known->names.append(each.name.whole);
    }
    std::string_view names = known->names;
    for (std::size_t i = 0; i < tag.attributes.size(); ++i) {
        const QualifiedName &name = tag.attributes[i].name;
        set(known->literals[i], tag.attributes[i].end, endOfLiteral(i + 1));
        XMLAttribute &attribute = known->attributes[i];
        attribute.prefix = names.substr(0, name.prefix.size());
        attribute.localName =
            names.substr(name.whole.size() - name.local.size(), name.local.size());
        attribute.nameNumber = vocabulary_.name(name.local);
        names.remove_prefix(name.whole.size());
    }
    return known;
}

void TagMemory::forget() noexcept {
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
