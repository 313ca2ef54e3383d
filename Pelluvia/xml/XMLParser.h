#pragma once

#include <Pelluvia/values/Error.h>
#include <Pelluvia/values/Export.h>
#include <Pelluvia/values/URL.h>
#include <Pelluvia/xml/XMLParserDelegate.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace pelluvia {

namespace xml {
class Engine;
class Source;
struct FileState;
struct Reported;
} // namespace xml

/// The domain of the errors that the parser makes. Codes are those of the underlying XML library,
/// among them
///
///     1     a limit was reached (see `xmlLimits`)
///     4     empty document
///     9     a byte or character that XML does not allow
///     32    unknown encoding
///     76    mismatched tags
///     77    the document ends within an element
///     81    a declared encoding that the bytes contradict
///     89    entities that refer to themselves or grow too much
///     1549  the file cannot be opened or read
///     6003  bytes that are no text in the encoding of the document
///
/// and the one below.
inline constexpr std::string_view NSXMLParserErrorDomain = "NSXMLParserErrorDomain";
/// The parse was stopped by `abortParsing`.
inline constexpr int NSXMLParserDelegateAbortedParseError = 512;

/// Keys of a parser error's user information, which also has `NSLocalizedDescriptionKey`: where it
/// was found, both counted from 1 (integers). Both are 0 when the file could not be opened.
inline constexpr std::string_view NSXMLParserErrorLineNumber = "NSXMLParserErrorLineNumber";
inline constexpr std::string_view NSXMLParserErrorColumn = "NSXMLParserErrorColumn";

/// Limits on what a document may ask for. Exceeding one is a parse error. Together they see to it
/// that the work for a document grows no faster than its size, and memory not at all.
namespace xmlLimits {
/// Elements inside elements.
inline constexpr std::size_t depth = 256;
/// Bytes of the text between two tags, or of one attribute value.
inline constexpr std::size_t textSize = 10'000'000;
/// References to entities, and defaults of attributes, may add to a document: this many bytes, and
/// beyond them this factor of what was read.
inline constexpr std::size_t amplificationAllowance = 1'000'000;
inline constexpr std::size_t amplificationFactor = 5;
/// Bytes of all external entities of a document together. What would exceed it is not read.
inline constexpr std::size_t externalEntitySize = 1'000'000;
/// Bytes of the document type declaration, with its external parts.
inline constexpr std::size_t declarationsSize = 256'000;
/// Attributes of an element, and namespace declarations in force.
inline constexpr int attributes = 500;
/// Different names, prefixes and namespace URIs of a document that the XML library reads, which
/// keeps them all; looked at from time to time.
inline constexpr std::size_t names = 100'000;
} // namespace xmlLimits

/// Who reads the documents.
enum class XMLEngine {
    /// The scanner reads what it can, which is much faster; the XML library reads what is unusual,
    /// and finds the words for what is wrong. No delegate can tell the difference, except in a
    /// document of more different names than `xmlLimits::names`: the scanner forgets names.
    automatic,
    /// Always the XML library.
    libxml2
};

/// What a parse has found out about a file, for further parses of the same file: they need not look
/// first who can read it, and fail if the file has changed in between. Nothing is known at first.
class XMLKnownFile {
  public:
    enum class Reader { unknown, scanner, library };

    /// Whether a parse has read the file to its end, and it is well-formed and in no way unusual.
    [[nodiscard]] bool isUsual() const noexcept { return reader_ == Reader::scanner; }

  private:
    friend class XMLParser;

    Reader reader_ = Reader::unknown;
    std::shared_ptr<const xml::FileState> state_; ///< null when it is in no file
};

/// Reads one XML 1.0 document from a file and reports it to a delegate event by event, in constant
/// memory and always with namespaces processed.
///
///     auto parser = XMLParser::initWithContentsOfURL(URL::fileURLWithPath("ride.gpx"));
///     parser->setDelegate(&delegate);
///     if (!parser->parse()) {
///         report(parser->parserError());
///     }
///
/// Text and attribute values are delivered as XML 1.0 defines them: references resolved, line ends
/// as one LF, in UTF-8 whatever the encoding of the file. Any encoding that the system's iconv
/// knows can be read.
///
/// External entities are read only when that is turned on, only from regular files inside the
/// folder that holds the document (symbolic links followed first), and never over the network. A
/// refused or missing one stands for no text and is logged.
///
/// A prefix that is not declared is not an error: the element is in no namespace. Comments and
/// processing instructions are passed over; documents are not validated.
///
/// Nothing is written to the standard streams, and the settings that a host has made in the XML
/// library for its own use are neither used nor changed.
///
/// An exception that a delegate throws stops the parse and reaches the caller of `parse`.
///
/// Threads: one parser on one thread; parsers on different threads do not disturb each other.
class PELLUVIA_EXPORT XMLParser {
  public:
    /// A parser for the file, which is opened by `parse`; null for nil.
    [[nodiscard]] static std::unique_ptr<XMLParser>
    initWithContentsOfURL(const std::optional<URL> &url);

    XMLParser(const XMLParser &) = delete;
    XMLParser &operator=(const XMLParser &) = delete;
    ~XMLParser();

    /// Who is told of the events; borrowed, must outlive the parse. Null: nobody. To be set before
    /// the parse, as what follows.
    void setDelegate(XMLParserDelegate *delegate) noexcept;

    /// Whether external entities are read; off at first.
    void setShouldResolveExternalEntities(bool should) noexcept;

    /// Who reads the document. With the environment variable `PELLUVIA_XML_ENGINE` set to
    /// `libxml2`, that is always the library.
    void setEngine(XMLEngine engine) noexcept;

    /// What an earlier parse has found out about the same file, by its `knownFile`.
    void setKnownFile(const XMLKnownFile &file);
    /// What is known about the file after the parse.
    [[nodiscard]] const XMLKnownFile &knownFile() const noexcept;

    /// Parses the whole document, on the calling thread. True when it was well-formed and nobody
    /// aborted; otherwise the delegate was told of the error, once, and `parserError` returns it. A
    /// parser parses once; another call fails with the same error, or with none after a success.
    bool parse();

    /// Called by the delegate during an event: no more events follow but the report of the abort.
    /// At other times it does nothing.
    void abortParsing();

    /// The error that ended the parse, or null.
    [[nodiscard]] const ErrorPtr &parserError() const noexcept;
    /// Where the parser stands in the document, or where the error that ended it was found; counted
    /// from 1, or 0 when there is no place. Columns are counted in characters. Within the text of
    /// an entity the place is that of the reference.
    [[nodiscard]] std::int64_t lineNumber() const noexcept;
    [[nodiscard]] std::int64_t columnNumber() const noexcept;

    /// A parser for something else than a file. Not for hosts: they cannot make a source.
    explicit XMLParser(std::unique_ptr<xml::Source> source);

  private:
    [[nodiscard]] ErrorPtr readDocument();
    [[nodiscard]] ErrorPtr readUnknown();
    [[nodiscard]] ErrorPtr readKnown();
    [[nodiscard]] ErrorPtr readWithScanner();
    [[nodiscard]] ErrorPtr readWithLibrary(xml::Reported reported);
    [[nodiscard]] bool mayScan() const;
    [[nodiscard]] bool fileHasChanged() const;
    [[nodiscard]] ErrorPtr changeError();
    [[nodiscard]] ErrorPtr abortError() const;

    std::unique_ptr<xml::Source> source_;
    std::unique_ptr<xml::Engine> engine_; ///< once the parse has begun
    XMLParserDelegate *delegate_ = nullptr;
    XMLEngine wantedEngine_ = XMLEngine::automatic;
    XMLKnownFile file_;
    bool resolvesExternalEntities_ = false;
    bool parsed_ = false;
    ErrorPtr error_;
};

} // namespace pelluvia
