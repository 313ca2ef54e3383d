// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/scan/Bytes.h>
#include <Pelluvia/xml/internal/scan/Characters.h>
#include <Pelluvia/xml/internal/scan/ScanEngine.h>

#include <algorithm>

/// \file
/// The fast way through what came before: known phrases, and plain texts between them.

namespace pelluvia::xml::scan {

inline bool ScanEngine::tellPhrase(const Phrase &phrase, const char *at, const char *end) {
    if (phrase.blankSize != 0 && !reportText({at, phrase.blankSize}, at + phrase.blankSize)) {
        return false;
    }
    return std::all_of(phrase.events.begin(), phrase.events.end(), [&](const Phrase::Event &event) {
        place_ = Phrase::placeOf(event, at, end);
        return event.isStart ? tellStart(*event.element, Phrase::declarationsOf(event),
                                         phrase.attributesOf(event))
                             : tellEnd(*event.element);
    });
}

bool ScanEngine::readKnown() {
    if (lastPhrase_ == nullptr || !seesAhead()) {
        return true;
    }
    return isWellFormed_ ? readKnownOf<Document::wellFormed>() : readKnownOf<Document::unknown>();
}

/// Known tags and plain texts, as far as they follow one another in what can be seen: almost all of
/// most documents. In one that is well-formed, there is nothing to check, and nobody asks what was
/// reported.
template <ScanEngine::Document document>
bool ScanEngine::readKnownOf() {
    constexpr bool isUnknown = document == Document::unknown;
    const char *at = window_.cursor();
    const char *const windowEnd = window_.end();
    const char *const lastBegin = windowEnd - (window_.atEnd() ? 0 : lookAhead_);
    // Not in the member, which would be read again behind every event: each phrase waits for the
    // one before it.
    Phrase *last = lastPhrase_;
    Phrase *before = nullptr; // the one that `last` has followed, and directly precedes the cursor
    while (at <= lastBegin) {
        const char *end = nullptr;
        if (is(tagLead, *at)) {
            Phrase *const known = memory_.follow(*last, at, end);
            if (known == nullptr) {
                break;
            }
            if (before != nullptr) {
                memory_.meet(*before, *last, *known);
            }
            before = last;
            last = known;
            if (!tellPhrase(*known, at, end)) {
                return false;
            }
            if constexpr (isUnknown) {
                textSize_ = known->hasStart ? 0 : textSize_;
                reported_ = {.tags = reported_.tags + known->tags};
            }
        } else {
            end = isUnknown ? skipText(at) : findMarkup(at);
            if (*end != '<' && !last->wantsText) {
                end = endOfText(end);
            }
            if (*end != '<') {
                break;
            }
            const std::string_view text(at, static_cast<std::size_t>(end - at));
            if constexpr (isUnknown) {
                if (!countText(text.size())) {
                    return false;
                }
                reported_.text += last->wantsText ? text.size() : 0;
            }
            if (last->wantsText && !tellText(text, end)) {
                return false;
            }
            before = nullptr;
        }
        at = end;
    }
    window_.moveTo(at);
    lastPhrase_ = last;
    open_ = last->inside;
    return true;
}

} // namespace pelluvia::xml::scan
