// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/XMLParserDelegate.h>
#include <Pelluvia/xml/internal/Engine.h>
#include <Pelluvia/xml/internal/Input.h>
#include <Pelluvia/xml/internal/Source.h>
#include <Pelluvia/xml/internal/scan/ElementTree.h>
#include <Pelluvia/xml/internal/scan/LineCounter.h>
#include <Pelluvia/xml/internal/scan/StartTag.h>
#include <Pelluvia/xml/internal/scan/TagMemory.h>
#include <Pelluvia/xml/internal/scan/Vocabulary.h>
#include <Pelluvia/xml/internal/scan/Window.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace pelluvia::xml::scan {

/// One parse of one document by the scanner: the fast way through documents that are well-formed
/// and in no way unusual. All others are refused, and the XML library reads them from the start; so
/// the scanner needs no error messages, and may refuse whatever is not worth its while.
///
/// What it reports up to there the library reports, too, so that its events need not be reported
/// twice. docs/xml.md tells how it works.
class ScanEngine final : public Engine {
  public:
    enum class Outcome { wellFormed, aborted, refused };

    /// What is known of a document: all of it was read before by the scanner, or nothing.
    enum class Document { unknown, wellFormed };

    /// A parse of `source`, which must be open and outlive it, for a delegate or nobody. At most
    /// `windowSize` bytes are in memory; what does not fit is refused. The characters between the
    /// tags of a document that is well-formed are not looked at again.
    ScanEngine(XMLParser &parser, Source &source, XMLParserDelegate *delegate,
               Document document = Document::unknown, std::size_t windowSize = usualWindowSize);

    /// Parses. Throws what the delegate has thrown.
    [[nodiscard]] Outcome run();
    [[nodiscard]] const Reported &reported() const noexcept { return reported_; }

    /// Why the source could not be read to its end, if it was refused for that.
    [[nodiscard]] const std::optional<Failure> &failure() const noexcept {
        return input_.failure();
    }

    void abort() override;
    [[nodiscard]] Position position() override;

    /// Enough for any tag, comment, CDATA section, and text between them, that is not unusual.
    static constexpr std::size_t usualWindowSize = 128 * 1024;
    /// More text between the starts of two elements, or white space and comments around the root,
    /// is refused.
    static constexpr std::size_t longestText = 1'000'000;
    /// A document is refused whose elements are ever new: that fills the memory of elements in less
    /// than so many bytes, more than so many times in a row. The library is faster there.
    static constexpr std::uint64_t quickFilling = 64'000;
    static constexpr int mostQuickFillings = 3;

  private:
    // What the document consists of, in its order. All return false where the parse ends.
    [[nodiscard]] bool readProlog();
    [[nodiscard]] bool readContent();
    [[nodiscard]] bool readEpilog();
    [[nodiscard]] bool readXMLDeclaration();
    [[nodiscard]] bool readMiscellany();

    // The steps through the content. A step that cannot see enough moves the window and takes
    // nothing: it is then taken again.
    [[nodiscard]] bool readKnown();
    template <Document document>
    [[nodiscard]] bool readKnownOf();
    [[nodiscard]] bool readUnknown();
    [[nodiscard]] bool readText();
    /// The end of the text at `at`: the next tag or aside, or what may not stand there, or cannot
    /// be seen as a whole.
    [[nodiscard]] const char *endOfText(const char *at) const noexcept;
    [[nodiscard]] bool readStart(char *at);
    [[nodiscard]] bool readEnd(const char *at);
    [[nodiscard]] bool readAside();
    [[nodiscard]] bool readCDATA();
    /// What follows from a look that was not complete.
    [[nodiscard]] bool lookAgain(Look look);

    // Events, for the delegate. All return false when it has aborted.
    [[nodiscard]] bool tellStart(const Element &element, std::span<const Declaration> declarations,
                                 std::span<const XMLAttribute> attributes);
    [[nodiscard]] bool tellEnd(const Element &element);
    [[nodiscard]] bool tellText(std::string_view text, const char *place);
    [[nodiscard]] bool tellPhrase(const Phrase &phrase, const char *at, const char *end);

    // The same, if it is interested, and with count of what was reported.
    [[nodiscard]] bool reportStart(const Element &element, std::span<const XMLAttribute> attributes,
                                   const char *place);
    [[nodiscard]] bool reportEnd(const Element &element, const char *place);
    /// Whether the text at the cursor is reported.
    [[nodiscard]] bool wantsText() const noexcept { return open_ != nullptr && open_->wantsText; }
    /// Whether the text since an element started, with what is added, is not too long. Text that is
    /// not reported counts, too: a later parse may want it.
    [[nodiscard]] bool countText(std::size_t size) noexcept;
    [[nodiscard]] bool reportReferencesTo(const char *end);
    [[nodiscard]] bool reportTextTo(const char *end);
    [[nodiscard]] bool reportText(std::string_view text, const char *place);
    [[nodiscard]] std::span<const XMLAttribute> collectAttributes(const Element &element);

    /// Whether what comes next is in the window, unless it is unusually large.
    [[nodiscard]] bool seesAhead() const noexcept;
    void seeAhead();
    void forgetIfFull();
    /// Whether that is worth while. A document that was read before is read again.
    [[nodiscard]] bool repeatsItself() const noexcept {
        return isWellFormed_ || quickFillings_ <= mostQuickFillings;
    }

    XMLParser &parser_;
    XMLParserDelegate nobody_;
    XMLParserDelegate &delegate_;
    const bool namesOnly_;
    const bool isWellFormed_; ///< known before
    Source &source_;
    Input input_;
    Window window_;
    const std::ptrdiff_t lookAhead_; ///< bytes
    const Vocabulary vocabulary_;
    ElementTree elements_;
    TagMemory memory_;

    Element *open_ = nullptr;              ///< the innermost open element
    Phrase *lastPhrase_ = nullptr;         ///< the one before the cursor, if it is remembered
    StartTag tag_;                         ///< scratch
    std::vector<XMLAttribute> attributes_; ///< scratch
    std::size_t textSize_ = 0;             ///< of the text since an element started
    std::uint64_t lastFilling_ = 0;        ///< where the memory of elements was full
    int quickFillings_ = 0;                ///< in a row
    Reported reported_;
    bool aborted_ = false;

    const char *place_;                  ///< of the last event, in the window
    std::unique_ptr<LineCounter> lines_; ///< once somebody has asked for a position
};

// What happens for every tag of a document.

inline bool ScanEngine::seesAhead() const noexcept {
    return window_.holds(static_cast<std::size_t>(lookAhead_)) || window_.atEnd();
}

inline void ScanEngine::seeAhead() {
    if (!seesAhead()) {
        window_.more();
    }
}

inline bool ScanEngine::tellStart(const Element &element, std::span<const Declaration> declarations,
                                  std::span<const XMLAttribute> attributes) {
    for (const Declaration &each : declarations) {
        delegate_.didStartMappingPrefix(parser_, each.prefix, each.uri);
        if (aborted_) {
            return false;
        }
    }
    delegate_.didStartElement(parser_, element.name, XMLAttributes(attributes));
    return !aborted_;
}

inline bool ScanEngine::tellEnd(const Element &element) {
    delegate_.didEndElement(parser_, element.name);
    return !aborted_;
}

inline bool ScanEngine::countText(std::size_t size) noexcept {
    textSize_ += size;
    return isWellFormed_ || textSize_ <= longestText;
}

inline bool ScanEngine::tellText(std::string_view text, const char *place) {
    place_ = place;
    delegate_.foundCharacters(parser_, text);
    return !aborted_;
}

} // namespace pelluvia::xml::scan
