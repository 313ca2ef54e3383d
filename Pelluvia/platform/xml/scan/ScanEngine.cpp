#include <Pelluvia/platform/xml/scan/Asides.h>
#include <Pelluvia/platform/xml/scan/Bytes.h>
#include <Pelluvia/platform/xml/scan/Characters.h>
#include <Pelluvia/platform/xml/scan/ScanEngine.h>

#include <utility>

namespace pelluvia::xml::scan {

namespace {

/// As much as tags and texts of GPX files need.
constexpr std::size_t usualLookAhead = 4096;

} // namespace

ScanEngine::ScanEngine(XMLParser &parser, Source &source, XMLParserDelegate *delegate,
                       std::size_t windowSize)
    : parser_(parser),
      delegate_(delegate != nullptr ? *delegate : nobody_),
      namesOnly_(delegate == nullptr || delegate->wantsElementNamesOnly()),
      source_(source),
      input_(source),
      window_(input_, windowSize),
      vocabulary_(delegate_.vocabulary()),
      elements_(vocabulary_),
      memory_(vocabulary_),
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

inline void ScanEngine::lookAhead() {
    if (!window_.holds(usualLookAhead) && !window_.atEnd()) {
        window_.more();
    }
}

bool ScanEngine::readProlog() {
    lookAhead();
    if (begins(window_.cursor(), window_.end(), "<?xml ") == Look::complete &&
        !readXMLDeclaration()) {
        return false;
    }
    if (!readMiscellany()) {
        return false;
    }
    while (startedElements_ == 0) {
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
        lookAhead();
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
        lookAhead();
        const char *const at = window_.cursor();
        if (*at != '<' && !is(blank, *at)) {
            if (!readText()) {
                return false;
            }
            continue;
        }
        const char *end = nullptr;
        KnownTag *const known = memory_.follow(lastTag_, at, end);
        if (known != nullptr ? !reportKnown(*known, end) : !readUnknown()) {
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

/// Text up to the next markup, or what of it is in the window.
bool ScanEngine::readText() {
    const char *at = window_.cursor();
    while (true) {
        at = findSpecial<plainText>(at);
        if (isMultibyte(*at)) {
            const char *const next = skipMultibyte(at);
            const bool isStuck = next == at;
            at = next;
            if (!isStuck) {
                continue;
            }
        } else if (*at == ']' && begins(at, window_.end(), "]]>") == Look::refused) {
            ++at;
            continue;
        }
        break;
    }
    if (!reportTextTo(at)) {
        return false;
    }
    if (*at == '<') {
        return true;
    }
    if (*at == '&') {
        return readTextReference();
    }
    // A character or `]]>` that the window cuts off, or something that may not stand here.
    return !window_.holds(longestReference) && window_.more();
}

bool ScanEngine::readTextReference() {
    const char *at = window_.cursor();
    const Character character = readReference(at);
    if (character.size == 0) {
        return !window_.holds(longestReference) && window_.more();
    }
    window_.moveTo(at);
    return reportText(character.text(), at);
}

bool ScanEngine::readStart(char *at) {
    if (const Look look = readStartTag(at, window_.end(), tag_); look != Look::complete) {
        return lookAgain(look);
    }
    Element *const element = elements_.child(open_, tag_);
    if (element == nullptr) {
        return false;
    }
    lastTag_ = memory_.isLearning() ? memory_.learnStart(lastTag_, window_.cursor(), element, tag_)
                                    : nullptr;
    if (!reportTextTo(at)) {
        return false;
    }
    window_.moveTo(tag_.end);
    open_ = tag_.isEmpty ? open_ : element;
    const bool goesOn = reportStart(*element, collectAttributes(), tag_.close) &&
                        (!tag_.isEmpty || reportEnd(*element, tag_.end));
    forgetIfFull();
    return goesOn;
}

std::span<const XMLAttribute> ScanEngine::collectAttributes() {
    attributes_.clear();
    if (!namesOnly_) {
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
    lastTag_ =
        memory_.isLearning() ? memory_.learnEnd(lastTag_, window_.cursor(), end, open_) : nullptr;
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
    return reportText(text, after);
}

bool ScanEngine::lookAgain(Look look) {
    return look == Look::cutOff && window_.more();
}

bool ScanEngine::reportKnown(KnownTag &tag, const char *end) {
    const char *const begin = window_.cursor();
    const Element &element = *tag.element;
    lastTag_ = &tag;
    open_ = tag.inside();
    window_.moveTo(end);
    if (tag.blankSize != 0 && !reportText({begin, tag.blankSize}, begin + tag.blankSize)) {
        return false;
    }
    if (tag.kind == KnownTag::Kind::end) {
        return reportEnd(element, end);
    }
    return reportStart(element, tag.attributes, end - tag.closeSize) &&
           (tag.kind == KnownTag::Kind::start || reportEnd(element, end));
}

bool ScanEngine::reportStart(const Element &element, std::span<const XMLAttribute> attributes,
                             const char *place) {
    textSize_ = 0;
    ++startedElements_;
    place_ = place;
    if (namesOnly_) {
        delegate_.didStartElement(parser_, element.name, XMLAttributes());
        return !aborted_;
    }
    for (const Declaration &each : element.declarations) {
        delegate_.didStartMappingPrefix(parser_, each.prefix, each.uri);
        if (aborted_) {
            return false;
        }
    }
    delegate_.didStartElement(parser_, element.name, XMLAttributes(attributes));
    return !aborted_;
}

bool ScanEngine::reportEnd(const Element &element, const char *place) {
    if (!namesOnly_) {
        place_ = place;
        delegate_.didEndElement(parser_, element.name);
    }
    return !aborted_;
}

/// Reports what is between the cursor and `end`, and moves there.
bool ScanEngine::reportTextTo(const char *end) {
    const std::string_view text(window_.cursor(), static_cast<std::size_t>(end - window_.cursor()));
    window_.moveTo(end);
    return text.empty() || reportText(text, end);
}

bool ScanEngine::reportText(std::string_view text, const char *place) {
    textSize_ += text.size();
    if (textSize_ > longestText) {
        return false;
    }
    if (!namesOnly_) {
        place_ = place;
        delegate_.foundCharacters(parser_, text);
    }
    return !aborted_;
}

void ScanEngine::forgetIfFull() {
    if (elements_.isFull() || memory_.isFull()) {
        memory_.forget();
        lastTag_ = nullptr;
        if (elements_.isFull()) {
            elements_.keepOnly(open_);
        }
    }
}

} // namespace pelluvia::xml::scan
