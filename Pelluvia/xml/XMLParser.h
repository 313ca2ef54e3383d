// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Error.h>
#include <Pelluvia/values/Export.h>
#include <Pelluvia/values/URL.h>
#include <Pelluvia/xml/XMLErrors.h>
#include <Pelluvia/xml/XMLKnownFile.h>
#include <Pelluvia/xml/XMLLimits.h>
#include <Pelluvia/xml/XMLParserDelegate.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace pelluvia {

namespace xml {
class Source;
} // namespace xml

/// Who reads the documents.
enum class XMLEngine {
    /// The scanner reads what it can, which is much faster; the XML library reads what is unusual,
    /// and finds the words for what is wrong. No delegate can tell the difference, except in a
    /// document of more different names than `xmlLimits::names`: the scanner forgets names.
    automatic,
    /// Always the XML library.
    libxml2
};

/// Reads one XML 1.0 document and reports it to a delegate event by event, in constant memory and
/// always with namespaces processed.
///
///     auto parser = XMLParser::initWithContentsOfURL(URL::fileURLWithPath("ride.gpx"));
///     parser->setDelegate(&delegate);
///     if (!parser->parse()) {
///         report(parser->parserError());
///     }
///
/// The document is in a file, comes from an open descriptor, or is in memory; the events are the
/// same.
///
/// Text and attribute values are delivered as XML 1.0 defines them: references resolved, line ends
/// as one LF, in UTF-8 whatever the encoding of the document. Any encoding that the system's iconv
/// knows can be read.
///
/// External entities are read only when that is turned on, only from regular files inside the
/// folder that holds the document (symbolic links followed first), and never over the network. A
/// refused or missing one stands for no text and is logged. A document that was not opened by its
/// path is in no folder: none of its external entities are read.
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
    /// A parser for the file, which is opened by `parse`; null for nil. A path with a zero byte in
    /// it names no file: the parse fails.
    [[nodiscard]] static std::unique_ptr<XMLParser>
    initWithContentsOfURL(const std::optional<URL> &url);

    /// A parser for what can be read from an open descriptor. It is borrowed: it stays open, and
    /// must be until the parser is gone. A regular file is read from where the descriptor stands
    /// now, and it stands there still after the parse, so that another parser can read the same.
    /// Anything else, such as a pipe, is read to its end, and is then empty. Never null; the parse
    /// fails where nothing can be read.
    [[nodiscard]] static std::unique_ptr<XMLParser> initWithDescriptor(int descriptor);

    /// A parser for a document in memory. The bytes are not copied: they must stay as they are
    /// until the parser is gone. Never null.
    [[nodiscard]] static std::unique_ptr<XMLParser> initWithData(std::string_view bytes);

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

    /// What an earlier parse has found out about the same document, by its `knownFile`.
    void setKnownFile(const XMLKnownFile &file);
    /// What is known about the document after the parse.
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

    /// How many bytes of the source were read: up to some 100,000 more than have led to events.
    /// Never falls. After a document that was read to its end this is all of it.
    [[nodiscard]] std::uint64_t bytesRead() const noexcept;
    /// How many bytes there are to read; never less than were read. Nothing for what can be read
    /// only once, such as a pipe, and for a file given by its URL until it is open. Of a descriptor
    /// and of data it is known at once: so it tells whether another parser could read the same.
    [[nodiscard]] std::optional<std::uint64_t> sourceSize() const noexcept;

    /// A parser for something else. Not for hosts: they cannot make a source.
    explicit XMLParser(std::unique_ptr<xml::Source> source);

  private:
    class PELLUVIA_HIDDEN State;
    std::unique_ptr<State> state_;
};

} // namespace pelluvia
