// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/XMLLimits.h>
#include <Pelluvia/xml/XMLParserDelegate.h>
#include <Pelluvia/xml/internal/Engine.h>
#include <Pelluvia/xml/internal/ExternalEntities.h>
#include <Pelluvia/xml/internal/Failure.h>
#include <Pelluvia/xml/internal/Input.h>
#include <Pelluvia/xml/internal/Source.h>
#include <Pelluvia/xml/internal/sax2/EntityBudget.h>
#include <Pelluvia/xml/internal/sax2/NameTable.h>

#include <array>
#include <exception>
#include <libxml/parser.h>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace pelluvia::xml {

/// One parse of one document with libxml2's SAX2 interface.
///
/// How it stops: libxml2 has a call for that, but it frees the input under the hands of the
/// function that is at work, which some cannot bear when they report an error. So the engine gives
/// no more input, ignores all further events, replaces no more entities, and lets the library come
/// to the end of the few thousand bytes that it has.
///
/// The text of an entity is parsed by the library in a context of its own; so `context` in what
/// follows is not always the context of the document.
class Sax2Engine final : public Engine {
  public:
    /// A parse of `source`, which must be open and outlive it. What was reported before is not
    /// reported again.
    Sax2Engine(XMLParser &parser, Source &source, XMLParserDelegate *delegate,
               bool resolvesExternalEntities, Reported reported = {});
    ~Sax2Engine() override;

    /// Parses; returns the error that ended it, or null. Throws what the delegate has thrown.
    [[nodiscard]] ErrorPtr run();
    void abort() override;
    [[nodiscard]] Position position() override { return place(); }

  private:
    /// An attribute as libxml2 passes it.
    struct Attribute {
        const xmlChar *localName;
        const xmlChar *prefix;
        const xmlChar *uri;
        const xmlChar *begin;
        const xmlChar *end;

        [[nodiscard]] std::string_view value() const noexcept {
            return {reinterpret_cast<const char *>(begin), static_cast<std::size_t>(end - begin)};
        }
    };

    [[nodiscard]] Position place() const noexcept;

    struct Callbacks; ///< the functions that libxml2 calls
    [[nodiscard]] xmlSAXHandler handler() const;
    [[nodiscard]] xmlParserCtxtPtr newContext();
    void createContext();
    void finish();

    [[nodiscard]] std::size_t read(char *to, std::size_t room);
    void libraryError(xmlParserCtxtPtr context, const xmlError &error);

    [[nodiscard]] bool wasReported() noexcept;
    void startElement(const xmlParserCtxt &context, const xmlChar *localName, const xmlChar *prefix,
                      const xmlChar *uri, std::span<const xmlChar *> namespaces,
                      std::span<const Attribute> attributes, std::size_t defaulted);
    void fill(XMLElement &element, const xmlChar *localName, const xmlChar *prefix,
              const xmlChar *uri) noexcept;
    void reportNamespaces(std::span<const xmlChar *> pairs);
    [[nodiscard]] XMLAttributes collect(std::span<const Attribute> attributes);
    void endElement();
    void characters(std::string_view text);

    void declareEntity(xmlParserCtxtPtr context, const xmlChar *name, int type,
                       const xmlChar *publicIdentifier, const xmlChar *systemIdentifier,
                       xmlChar *content);
    [[nodiscard]] xmlEntityPtr entity(xmlParserCtxtPtr context, const xmlChar *name);
    [[nodiscard]] xmlEntityPtr parameterEntity(xmlParserCtxtPtr context, const xmlChar *name);
    [[nodiscard]] xmlParserInputPtr externalSubset(xmlParserCtxtPtr context,
                                                   std::string_view systemIdentifier);
    void load(xmlEntityPtr entity);
    void spend(std::size_t size);
    void declare(std::size_t size);

    /// Ends the parse with an error, unless it has ended already.
    void fail(Failure failure);
    /// Ends the parse; what follows in it is ignored.
    void stop() noexcept;

    XMLParser &parser_;
    XMLParserDelegate nobody_;
    XMLParserDelegate &delegate_;
    const bool namesOnly_;
    const bool resolvesExternalEntities_;
    Reported reported_; ///< what of it is still to come

    Input input_;
    xmlParserCtxtPtr context_ = nullptr;        ///< of the document
    xmlParserInputPtr documentInput_ = nullptr; ///< belongs to `context_`; knows the position
    std::optional<NameTable> names_;
    std::optional<NameTable> namespaces_;
    const xmlChar *lastURI_ = nullptr; ///< of the element that started last
    NameTable::Name lastNamespace_;
    std::array<XMLElement, xmlLimits::depth> open_;         ///< the elements that are open
    std::array<XMLInterest, xmlLimits::depth> interests_{}; ///< in the open elements
    std::size_t depth_ = 0;                                 ///< how many they are
    std::vector<XMLAttribute> attributes_; ///< room for those of one element; never shrinks

    std::size_t textSize_ = 0; ///< of the text since the last tag
    EntityBudget budget_;
    std::uint64_t received_ = 0; ///< bytes of external entities
    ExternalEntities externalEntities_;
    /// The files in which external entities were declared, where that is not the document.
    std::unordered_map<const xmlEntity *, std::string> declaringPaths_;
    /// The system identifier, being no URI, of an entity that the library has not declared.
    std::string misnamed_;
    std::string subset_; ///< the text of the external subset; the library does not copy it

    bool stopped_ = false;
    std::optional<Failure> failure_;
    Position position_; ///< once stopped
    std::exception_ptr exception_;
};

} // namespace pelluvia::xml
