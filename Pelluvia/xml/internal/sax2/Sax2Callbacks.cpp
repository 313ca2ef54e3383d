// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/sax2/LimitFailures.h>
#include <Pelluvia/xml/internal/sax2/Sax2Engine.h>

#include <algorithm>
#include <libxml/SAX2.h>

/// \file
/// The functions that libxml2 calls: they find the engine and keep exceptions out of the library.

namespace pelluvia::xml {

// The events, of which there are many: in this file, so that they become one with the functions
// below.

inline void Sax2Engine::fill(XMLElement &element, const xmlChar *localName, const xmlChar *prefix,
                             const xmlChar *uri) noexcept {
    const NameTable::Name name = names_->find(localName);
    element.localName = name.text;
    element.nameNumber = name.number;
    if (uri != lastURI_) {
        lastURI_ = uri;
        lastNamespace_ = namespaces_->find(uri);
    }
    element.namespaceURI = lastNamespace_.text;
    element.namespaceNumber = lastNamespace_.number;
    element.prefix = NameTable::text(prefix);
}

/// Whether the delegate was told before of the tag that has come.
inline bool Sax2Engine::wasReported() noexcept {
    if (reported_.tags == 0) {
        reported_.text = 0; // where that tag comes, the text is over
        return false;
    }
    --reported_.tags;
    return true;
}

inline void Sax2Engine::startElement(const xmlParserCtxt &context, const xmlChar *localName,
                                     const xmlChar *prefix, const xmlChar *uri,
                                     std::span<const xmlChar *> namespaces,
                                     std::span<const Attribute> attributes, std::size_t defaulted) {
    textSize_ = 0;
    budget_.endValues();
    if (depth_ == open_.size()) {
        return fail(limitFailures::depth());
    }
    // The library keeps two pointers for each declaration that is in force.
    if (attributes.size() > xmlLimits::attributes || context.nsNr > 2 * xmlLimits::attributes) {
        return fail(limitFailures::attributes());
    }
    for (const Attribute &each : attributes.last(defaulted)) {
        spend(NameTable::text(each.localName).size() + each.value().size());
    }
    XMLElement &element = open_[depth_++];
    fill(element, localName, prefix, uri);
    const bool isWithinAll = depth_ > 1 && interests_[depth_ - 2] == XMLInterest::all;
    XMLInterest &interest = interests_[depth_ - 1];
    interest =
        isWithinAll ? XMLInterest::all : delegate_.interestIn(element, {open_.data(), depth_ - 1});
    if (wasReported() || interest == XMLInterest::nothing) {
        return;
    }
    if (namesOnly_) {
        if (!stopped_) {
            delegate_.didStartElement(parser_, element, XMLAttributes());
        }
        return;
    }
    if (!namespaces.empty()) {
        reportNamespaces(namespaces);
    }
    if (!stopped_) {
        delegate_.didStartElement(parser_, element, collect(attributes));
    }
}

void Sax2Engine::reportNamespaces(std::span<const xmlChar *> pairs) {
    for (std::size_t i = 0; i < pairs.size() && !stopped_; i += 2) {
        delegate_.didStartMappingPrefix(parser_, NameTable::text(pairs[i]),
                                        NameTable::text(pairs[i + 1]));
    }
}

inline XMLAttributes Sax2Engine::collect(std::span<const Attribute> attributes) {
    if (attributes_.size() < attributes.size()) {
        attributes_.resize(attributes.size());
    }
    XMLAttribute *next = attributes_.data();
    for (const Attribute &each : attributes) {
        const NameTable::Name name = names_->find(each.localName);
        *next++ = {name.text, NameTable::text(each.prefix), each.value(), name.number};
    }
    return XMLAttributes({attributes_.data(), attributes.size()});
}

inline void Sax2Engine::endElement() {
    textSize_ = 0;
    const XMLElement &element = open_[--depth_];
    if (!wasReported() && interests_[depth_] != XMLInterest::nothing) {
        delegate_.didEndElement(parser_, element);
    }
}

inline void Sax2Engine::characters(std::string_view text) {
    textSize_ += text.size();
    if (textSize_ > xmlLimits::textSize) {
        return fail(limitFailures::textSize());
    }
    if (reported_.tags != 0 || interests_[depth_ - 1] != XMLInterest::all) {
        return;
    }
    if (reported_.text != 0) {
        const std::uint64_t told = std::min<std::uint64_t>(reported_.text, text.size());
        reported_.text -= told;
        text.remove_prefix(told);
        if (text.empty()) {
            return;
        }
    }
    delegate_.foundCharacters(parser_, text);
}

namespace {

#if LIBXML_VERSION >= 21200
using LibraryError = const xmlError *;
#else
using LibraryError = xmlError *;
#endif

xmlParserCtxtPtr contextOf(void *userData) {
    return static_cast<xmlParserCtxtPtr>(userData);
}

} // namespace

struct Sax2Engine::Callbacks {
    static Sax2Engine &engineOf(xmlParserCtxtPtr context) noexcept {
        return *static_cast<Sax2Engine *>(context->_private);
    }

    /// Does the work unless the parse is over, and if it is, asks the library for no more events.
    template <class Work>
    static void perform(xmlParserCtxtPtr context, Work work) noexcept {
        Sax2Engine &engine = engineOf(context);
        if (!engine.stopped_) {
            try {
                work(engine);
            } catch (...) {
                engine.exception_ = std::current_exception();
                engine.stop();
            }
        }
        if (engine.stopped_) {
            context->disableSAX = 1;
        }
    }

    static void startElement(void *userData, const xmlChar *localName, const xmlChar *prefix,
                             const xmlChar *uri, int namespaceCount, const xmlChar **namespaces,
                             int attributeCount, int defaultedCount,
                             const xmlChar **attributes) noexcept {
        const xmlParserCtxtPtr context = contextOf(userData);
        perform(context, [&](Sax2Engine &engine) {
            engine.startElement(*context, localName, prefix, uri,
                                {namespaces, 2 * static_cast<std::size_t>(namespaceCount)},
                                {reinterpret_cast<const Attribute *>(attributes),
                                 static_cast<std::size_t>(attributeCount)},
                                static_cast<std::size_t>(defaultedCount));
        });
    }

    static void endElement(void *userData, const xmlChar *, const xmlChar *,
                           const xmlChar *) noexcept {
        perform(contextOf(userData), [](Sax2Engine &engine) { engine.endElement(); });
    }

    /// In place of `endElement`, for delegates that want no more than names.
    static void countEndElement(void *userData, const xmlChar *, const xmlChar *,
                                const xmlChar *) noexcept {
        --engineOf(contextOf(userData)).depth_;
    }

    static void characters(void *userData, const xmlChar *text, int size) noexcept {
        perform(contextOf(userData), [&](Sax2Engine &engine) {
            engine.characters(
                {reinterpret_cast<const char *>(text), static_cast<std::size_t>(size)});
        });
    }

    static void entityDecl(void *userData, const xmlChar *name, int type,
                           const xmlChar *publicIdentifier, const xmlChar *systemIdentifier,
                           xmlChar *content) noexcept {
        const xmlParserCtxtPtr context = contextOf(userData);
        perform(context, [&](Sax2Engine &engine) {
            engine.declareEntity(context, name, type, publicIdentifier, systemIdentifier, content);
        });
    }

    static void unparsedEntityDecl(void *userData, const xmlChar *name,
                                   const xmlChar *publicIdentifier, const xmlChar *systemIdentifier,
                                   const xmlChar *notation) noexcept {
        if (xmlGetPredefinedEntity(name) == nullptr) {
            xmlSAX2UnparsedEntityDecl(userData, name, publicIdentifier, systemIdentifier, notation);
        }
    }

    static xmlEntityPtr getEntity(void *userData, const xmlChar *name) noexcept {
        const xmlParserCtxtPtr context = contextOf(userData);
        xmlEntityPtr entity = nullptr;
        perform(context, [&](Sax2Engine &engine) { entity = engine.entity(context, name); });
        if (engineOf(context).stopped_) {
            // Nothing is replaced any more. (For null the library would look itself.)
            return xmlGetPredefinedEntity(reinterpret_cast<const xmlChar *>("quot"));
        }
        return entity;
    }

    static xmlEntityPtr getParameterEntity(void *userData, const xmlChar *name) noexcept {
        const xmlParserCtxtPtr context = contextOf(userData);
        xmlEntityPtr entity = nullptr;
        perform(context,
                [&](Sax2Engine &engine) { entity = engine.parameterEntity(context, name); });
        return entity;
    }

    /// Called for the external subset only: other entities are given as if they were internal.
    static xmlParserInputPtr resolveEntity(void *userData, const xmlChar *,
                                           const xmlChar *systemIdentifier) noexcept {
        const xmlParserCtxtPtr context = contextOf(userData);
        xmlParserInputPtr input = nullptr;
        perform(context, [&](Sax2Engine &engine) {
            input = engine.externalSubset(context, NameTable::text(systemIdentifier));
        });
        return input;
    }

    static void error(void *userData, LibraryError error) noexcept {
        const xmlParserCtxtPtr context = contextOf(userData);
        perform(context, [&](Sax2Engine &engine) { engine.libraryError(context, *error); });
    }

    static int read(void *engine, char *to, int room) noexcept {
        auto &self = *static_cast<Sax2Engine *>(engine);
        try {
            return static_cast<int>(self.read(to, static_cast<std::size_t>(room)));
        } catch (...) {
            self.exception_ = std::current_exception();
            self.stop();
            return -1;
        }
    }
};

xmlSAXHandler Sax2Engine::handler() const {
    xmlSAXHandler handler{};
    handler.initialized = XML_SAX2_MAGIC;
    handler.serror = Callbacks::error;
    handler.startElementNs = Callbacks::startElement;
    handler.endElementNs = namesOnly_ ? Callbacks::countEndElement : Callbacks::endElement;
    if (!namesOnly_) {
        handler.characters = Callbacks::characters;
        // The same function for both: the library then does not look whether a text is blank.
        handler.ignorableWhitespace = Callbacks::characters;
    }
    // The library keeps the declared entities in a document of its own, without any elements.
    handler.startDocument = xmlSAX2StartDocument;
    handler.internalSubset = xmlSAX2InternalSubset;
    handler.externalSubset = xmlSAX2ExternalSubset;
    handler.entityDecl = Callbacks::entityDecl;
    handler.unparsedEntityDecl = Callbacks::unparsedEntityDecl;
    handler.getEntity = Callbacks::getEntity;
    handler.getParameterEntity = Callbacks::getParameterEntity;
    handler.resolveEntity = Callbacks::resolveEntity;
    return handler;
}

xmlParserCtxtPtr Sax2Engine::newContext() {
    xmlSAXHandler events = handler();
    // No user data: the library then passes the context that is at work.
    return xmlCreateIOParserCtxt(&events, nullptr, Callbacks::read, nullptr, this,
                                 XML_CHAR_ENCODING_NONE);
}

} // namespace pelluvia::xml
