// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/gpximport/GPXFileImporter.h>
#include <Pelluvia/gpximport/GPXImportCounter.h>
#include <Pelluvia/gpximport/internal/ElementHandler.h>
#include <Pelluvia/xml/XMLParser.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace pelluvia {

/// What an importer keeps, and the passes of its imports. What happens within a pass is the
/// business of `elements`.
class ImportState {
  public:
    /// The importer is what its parsers report to.
    ImportState(GPXFileImporter &importer, std::shared_ptr<GPSOutputReceiver> receiver)
        : elements(std::move(receiver)), importer_(importer) {}

    [[nodiscard]] std::optional<URL> fileURL() const;
    void setFileURL(std::optional<URL> newURL);

    /// What is read: the file at `fileURL`, a descriptor, or a document.
    using Source = std::variant<std::monostate, int, std::string_view>;
    [[nodiscard]] ErrorPtr process(Source source);
    /// A pass that is no part of an import.
    [[nodiscard]] ErrorPtr runSinglePass(std::int32_t kind);
    [[nodiscard]] ReadingProgress readingProgress() const;
    void parseErrorOccurred(XMLParser &parser, const ErrorPtr &error);

    ElementHandler elements;
    bool doTracks = true;
    bool doRoutes = true;
    bool doWaypoints = true;
    /// Whether the pass need not collect what goes only into points of other kinds: in a file where
    /// each point is cleared at its start (of one in a foreign namespace, only the end is seen),
    /// when a pass follows that collects it, and when the importer is in no element at first.
    bool leavesOut = false;
    std::optional<GPXImportFault> fault; ///< of the last import

  private:
    [[nodiscard]] ErrorPtr countAndRunPasses();
    /// The parse before the passes; a file that cannot be counted may still be read.
    void countElements();
    [[nodiscard]] ErrorPtr runParsers();
    [[nodiscard]] ErrorPtr runPass(std::int32_t kind);
    [[nodiscard]] bool isLastPass(std::int32_t kind) const noexcept;
    [[nodiscard]] ErrorPtr runParser(std::int32_t kind);
    void collectLeftOut();
    [[nodiscard]] std::unique_ptr<XMLParser> parserOf(const std::optional<URL> &url,
                                                      XMLParserDelegate &delegate) const;
    [[nodiscard]] std::unique_ptr<XMLParser> parserForElements();
    /// Parses, and keeps the account of what is read.
    [[nodiscard]] bool parse(XMLParser &parser);
    [[nodiscard]] GPXImportFault faultOf(const Error &error) const;

    GPXFileImporter &importer_;
    mutable std::mutex fileURLMutex;
    std::optional<URL> _fileURL;
    /// Reserved: extensions are told by their namespaces, never by their prefixes.
    std::optional<std::string> geocachePrefix;
    std::optional<std::string> gpxDataPrefix;

    Source source;
    std::shared_ptr<GPXImportCounter> counters;
    /// What the counting parse has found out about the file, for the passes; and which file.
    XMLKnownFile countedFile;
    std::optional<URL> countedURL;
    std::int32_t recno = 0; ///< of no use but to be reset

    // How far the import is.
    const XMLParser *reader = nullptr;       ///< the parser at work
    unsigned parses = 0;                     ///< how often the source is read
    std::uint64_t bytesBefore = 0;           ///< of the parses before
    std::optional<std::uint64_t> sourceSize; ///< as soon as it is known
};

} // namespace pelluvia
