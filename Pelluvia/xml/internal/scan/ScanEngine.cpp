// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/scan/Asides.h>
#include <Pelluvia/xml/internal/scan/Bytes.h>
#include <Pelluvia/xml/internal/scan/Characters.h>
#include <Pelluvia/xml/internal/scan/ScanEngine.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace pelluvia::xml::scan {

namespace {

/// As much as tags and texts of GPX files need.
constexpr std::size_t usualLookAhead = 4096;

/// The place behind the reference at `at`; `at` itself where there is none, or not all of it.
const char *skipReference(const char *at) noexcept {
    if (*at == '&') {
        static_cast<void>(readReference(at)); // moves only if there is one
    }
    return at;
}

/// Nothing longer can look wrong in a text because it is cut off: no reference, character or `]]>`.
constexpr std::ptrdiff_t longestSpecial = longestReference;

} // namespace

ScanEngine::ScanEngine(XMLParser &parser, Source &source, XMLParserDelegate *delegate,
                       Document document, std::size_t windowSize)
    : parser_(parser),
      delegate_(delegate != nullptr ? *delegate : nobody_),
      namesOnly_(delegate == nullptr || delegate->wantsElementNamesOnly()),
      isWellFormed_(document == Document::wellFormed),
      source_(source),
      input_(source),
      window_(input_, windowSize),
      lookAhead_(static_cast<std::ptrdiff_t>(std::min(usualLookAhead, windowSize / 4))),
      vocabulary_(delegate_.vocabulary()),
      elements_(vocabulary_, delegate_),
      memory_(vocabulary_, namesOnly_),
      place_(window_.cursor()) {}

ScanEngine::Outcome ScanEngine::run() {
    const bool isComplete = input_.begin() && readProlog() && readContent() && readEpilog();
    if (aborted_) {
        return Outcome::aborted;
    }
    place_ = window_.end();
    return isComplete ? Outcome::wellFormed : Outcome::refused;
}

void ScanEngine::abort() {
    aborted_ = true;
}

Position ScanEngine::position() {
    if (lines_ == nullptr) {
        auto source = source_.again();
        if (source == nullptr) {
            return {};
        }
        lines_ = std::make_unique<LineCounter>(std::move(source));
    }
    return lines_->at(window_.offset(place_));
}

bool ScanEngine::reportStart(const Element &element, std::span<const XMLAttribute> attributes,
                             const char *place) {
    textSize_ = 0;
    reported_ = {.tags = reported_.tags + 1};
    if (element.interest == XMLInterest::nothing) {
        return true;
    }
    place_ = place;
    const std::span<const Declaration> declarations(element.declarations);
    return tellStart(element, declarations.first(namesOnly_ ? 0 : declarations.size()), attributes);
}

bool ScanEngine::reportEnd(const Element &element, const char *place) {
    if (namesOnly_) {
        return true;
    }
    reported_ = {.tags = reported_.tags + 1};
    place_ = place;
    return element.interest == XMLInterest::nothing || tellEnd(element);
}

bool ScanEngine::reportText(std::string_view text, const char *place) {
    reported_.text += text.size();
    return tellText(text, place);
}

const char *ScanEngine::endOfText(const char *at) const noexcept {
    while (true) {
        at = isWellFormed_ ? findMarkup(at) : skipText(at);
        const char *const next = skipReference(at);
        if (next == at) {
            return at;
        }
        at = next;
    }
}

bool ScanEngine::readProlog() {
    seeAhead();
    if (begins(window_.cursor(), window_.end(), "<?xml ") == Look::complete &&
        !readXMLDeclaration()) {
        return false;
    }
    if (!readMiscellany()) {
        return false;
    }
    while (reported_.tags == 0) {
        if (*window_.cursor() != '<' || !readStart(window_.cursor())) {
            return false;
        }
    }
    return true;
}

bool ScanEngine::readXMLDeclaration() {
    const char *after = nullptr;
    const Look look = scan::readXMLDeclaration(window_.cursor(), window_.end(), after);
    if (look == Look::complete) {
        window_.moveTo(after);
    }
    return look == Look::complete;
}

/// White space, comments and processing instructions around the root.
bool ScanEngine::readMiscellany() {
    const std::uint64_t begin = window_.offset(window_.cursor());
    while (window_.offset(window_.cursor()) - begin <= longestText) {
        window_.moveTo(skip(blank, window_.cursor()));
        seeAhead();
        const char *const at = window_.cursor();
        if (is(blank, *at)) {
            continue;
        }
        if (*at != '<' || (at[1] != '!' && at[1] != '?')) {
            return true;
        }
        if (!readAside()) {
            return false;
        }
    }
    return false;
}

bool ScanEngine::readContent() {
    while (open_ != nullptr) {
        seeAhead();
        const char *const begin = window_.cursor();
        if (!readKnown()) {
            return false;
        }
        // What comes next may be known, too, and only not be seen as a whole.
        const bool mayBeCutOff = window_.cursor() != begin && !seesAhead();
        if (open_ != nullptr && !mayBeCutOff && !readUnknown()) {
            return false;
        }
    }
    return true;
}

bool ScanEngine::readEpilog() {
    return readMiscellany() && window_.cursor() == window_.end() && !input_.failure();
}

/// What follows is no tag that was expected: text, or other markup with white space in front.
bool ScanEngine::readUnknown() {
    const char *const at = skip(blank, window_.cursor());
    if (*at != '<') {
        return readText();
    }
    if (at[1] == '/') {
        return readEnd(at);
    }
    if (at[1] != '!' && at[1] != '?') {
        return readStart(window_.cursor() + (at - window_.cursor()));
    }
    return reportTextTo(at) && readAside();
}

/// Text up to the next markup. Nothing of it is reported before all of it is known to be right: of
/// a text that is not, the library might report less.
bool ScanEngine::readText() {
    const char *const end = endOfText(window_.cursor());
    if (*end != '<') {
        const bool mayBeCutOff = window_.end() - end < longestSpecial;
        return mayBeCutOff && window_.more();
    }
    return reportReferencesTo(end) && reportTextTo(end);
}

/// Reports the text up to behind the last reference in front of `end`.
bool ScanEngine::reportReferencesTo(const char *end) {
    while (open_->wantsText) {
        const auto size = static_cast<std::size_t>(end - window_.cursor());
        const char *at = static_cast<const char *>(std::memchr(window_.cursor(), '&', size));
        if (at == nullptr) {
            break;
        }
        if (!reportTextTo(at)) {
            return false;
        }
        const Character character = readReference(at);
        window_.moveTo(at);
        if (!reportText(character.text(), at)) {
            return false;
        }
    }
    return true;
}

bool ScanEngine::readStart(char *at) {
    if (const Look look = readStartTag(at, window_.end(), tag_); look != Look::complete) {
        return lookAgain(look);
    }
    Element *const element = repeatsItself() ? elements_.child(open_, tag_) : nullptr;
    if (element == nullptr) {
        return false;
    }
    lastPhrase_ = memory_.isLearning()
                      ? memory_.learnStart(lastPhrase_, window_.cursor(), element, tag_)
                      : nullptr;
    if (!reportTextTo(at)) {
        return false;
    }
    window_.moveTo(tag_.end);
    open_ = tag_.isEmpty ? open_ : element;
    const bool goesOn = reportStart(*element, collectAttributes(*element), tag_.close) &&
                        (!tag_.isEmpty || reportEnd(*element, tag_.end));
    forgetIfFull();
    return goesOn;
}

/// Those of the tag that was read, which starts the element; none if they are not reported.
std::span<const XMLAttribute> ScanEngine::collectAttributes(const Element &element) {
    attributes_.clear();
    if (!namesOnly_ && element.interest != XMLInterest::nothing) {
        for (StartTag::Attribute &each : tag_.attributes) {
            if (!each.isPlain) {
                normalise(each);
            }
            attributes_.push_back({each.name.local, each.name.prefix, each.text(),
                                   vocabulary_.name(each.name.local)});
        }
    }
    return attributes_;
}

bool ScanEngine::readEnd(const char *at) {
    const char *end = nullptr;
    if (const Look look = readEndTag(at, window_.end(), open_->qualifiedName, end);
        look != Look::complete) {
        return lookAgain(look);
    }
    const Element &element = *open_;
    lastPhrase_ = memory_.isLearning() ? memory_.learnEnd(lastPhrase_, window_.cursor(), end, open_)
                                       : nullptr;
    if (!reportTextTo(at)) {
        return false;
    }
    window_.moveTo(end);
    open_ = element.parent;
    const bool goesOn = reportEnd(element, end);
    forgetIfFull();
    return goesOn;
}

/// A comment, processing instruction or CDATA section.
bool ScanEngine::readAside() {
    const char *const at = window_.cursor();
    const char *after = nullptr;
    Look look = Look::refused;
    if (at[1] == '?') {
        look = readInstruction(at, window_.end(), after);
    } else if (look = begins(at, window_.end(), "<!--"); look == Look::complete) {
        look = readComment(at, window_.end(), after);
    } else if (open_ != nullptr && begins(at, window_.end(), "<![CDATA[") != Look::refused) {
        return readCDATA();
    }
    if (look == Look::complete) {
        window_.moveTo(after);
        return true;
    }
    return lookAgain(look);
}

bool ScanEngine::readCDATA() {
    const char *const at = window_.cursor();
    const char *after = nullptr;
    std::string_view text;
    Look look = begins(at, window_.end(), "<![CDATA[");
    if (look == Look::complete) {
        look = scan::readCDATA(at, window_.end(), text, after);
    }
    if (look != Look::complete) {
        return lookAgain(look);
    }
    window_.moveTo(after);
    return countText(text.size()) && (!wantsText() || reportText(text, after));
}

bool ScanEngine::lookAgain(Look look) {
    return look == Look::cutOff && window_.more();
}

/// Reports what is between the cursor and `end`, if it is wanted, and moves there.
bool ScanEngine::reportTextTo(const char *end) {
    const std::string_view text(window_.cursor(), static_cast<std::size_t>(end - window_.cursor()));
    window_.moveTo(end);
    return countText(text.size()) && (text.empty() || !wantsText() || reportText(text, end));
}

void ScanEngine::forgetIfFull() {
    if (elements_.isFull() || memory_.isFull()) {
        memory_.forget();
        lastPhrase_ = nullptr;
        if (elements_.isFull()) {
            elements_.keepOnly(open_);
            const std::uint64_t place = window_.offset(window_.cursor());
            quickFillings_ = place - lastFilling_ < quickFilling ? quickFillings_ + 1 : 0;
            lastFilling_ = place;
        }
    }
}

} // namespace pelluvia::xml::scan
