// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/sax2/Sax2Engine.h>

#include <Pelluvia/xml/XMLErrors.h>
#include <Pelluvia/xml/internal/ForeignFormat.h>
#include <Pelluvia/xml/internal/sax2/LimitFailures.h>

#include <cstring>
#include <libxml/xmlerror.h>
#include <mutex>
#include <new>
#include <utility>

namespace pelluvia::xml {

// The codes that hosts see are the library's.
static_assert(xmlErrors::limit == XML_ERR_INTERNAL_ERROR);
static_assert(xmlErrors::emptyDocument == XML_ERR_DOCUMENT_EMPTY);
static_assert(xmlErrors::wrongCharacter == XML_ERR_INVALID_CHAR);
static_assert(xmlErrors::unknownEncoding == XML_ERR_UNSUPPORTED_ENCODING);
static_assert(xmlErrors::mismatchedTags == XML_ERR_TAG_NAME_MISMATCH);
static_assert(xmlErrors::endsEarly == XML_ERR_TAG_NOT_FINISHED);
static_assert(xmlErrors::contradictedEncoding == XML_ERR_INVALID_ENCODING);
static_assert(xmlErrors::entities == XML_ERR_ENTITY_LOOP);
static_assert(xmlErrors::unreadable == XML_IO_LOAD_ERROR);
static_assert(xmlErrors::notInEncoding == XML_I18N_CONV_FAILED);

namespace {

/// Whether the library refuses to keep one more name, because of its limit. It then takes names for
/// missing, and complains of anything.
bool isFull(xmlDictPtr names) {
    const std::string longest(50'000, '#'); // and no name
    return xmlDictGetUsage(names) > xmlLimits::nameMemory &&
           xmlDictLookup(names, reinterpret_cast<const xmlChar *>(longest.data()),
                         static_cast<int>(longest.size())) == nullptr;
}

/// What the library has to say; but of limits, which it does not always name.
Failure failureOf(const xmlParserCtxt &context, const xmlError &error) {
    constexpr int deepest = 40; // that it follows entities
    const char *const message = error.message != nullptr ? error.message : "Parse error";
    switch (error.code) {
    case XML_ERR_INTERNAL_ERROR:
        if (std::strstr(message, "Huge input lookup") != nullptr) {
            return limitFailures::markupSize();
        }
        break;
    case XML_ERR_ENTITY_LOOP:
        return context.depth >= deepest || context.inputNr > deepest
                   ? limitFailures::entityDepth()
                   : limitFailures::amplification();
    case XML_ERR_NO_MEMORY:
    case XML_ERR_NAME_REQUIRED:
    case XML_ERR_PI_NOT_STARTED:
        if (isFull(context.dict)) {
            return limitFailures::nameMemory();
        }
        break;
    default:
        break;
    }
    return {error.code, message};
}

} // namespace

Sax2Engine::Sax2Engine(XMLParser &parser, Source &source, XMLParserDelegate *delegate,
                       bool resolvesExternalEntities, Reported reported)
    : parser_(parser),
      delegate_(delegate != nullptr ? *delegate : nobody_),
      namesOnly_(delegate == nullptr || delegate->wantsElementNamesOnly()),
      resolvesExternalEntities_(resolvesExternalEntities),
      reported_(reported),
      input_(source),
      externalEntities_(source) {}

Sax2Engine::~Sax2Engine() {
    if (context_ != nullptr) {
        xmlFreeDoc(context_->myDoc); // holds the declared entities and nothing else
        xmlFreeParserCtxt(context_);
    }
}

ErrorPtr Sax2Engine::run() {
    if (!input_.begin()) {
        stopped_ = true;
        return makeError(*input_.failure(), position_ = input_.failurePosition());
    }
    if (const auto foreign = foreignFormat(input_.unconvertedStart())) {
        stopped_ = true;
        return makeError(*foreign, position_ = {1, 1});
    }
    createContext();
    const XMLVocabulary vocabulary = delegate_.vocabulary();
    names_.emplace(context_->dict, vocabulary.names);
    namespaces_.emplace(context_->dict, vocabulary.namespaces);

    xmlParseDocument(context_);
    finish();
    if (exception_) {
        std::rethrow_exception(exception_);
    }
    return failure_ ? makeError(*failure_, position_) : nullptr;
}

void Sax2Engine::createContext() {
    static std::once_flag initialised;
    std::call_once(initialised, xmlInitParser);

    context_ = newContext();
    if (context_ == nullptr) {
        throw std::bad_alloc();
    }
    documentInput_ = context_->input;
    context_->_private = this;
    // All of them, so that the host's defaults for the process do not count. Not XML_PARSE_NOENT:
    // the library would open external entities; `replaceEntities` alone replaces only those that
    // have a text.
    xmlCtxtUseOptions(context_, XML_PARSE_NONET | XML_PARSE_IGNORE_ENC |
                                    (resolvesExternalEntities_ ? XML_PARSE_DTDLOAD : 0));
    context_->replaceEntities = 1;
    xmlDictSetLimit(context_->dict, xmlLimits::nameMemory);
    // The input is UTF-8 by now, whatever its first bytes look like.
    context_->encoding = xmlStrdup(reinterpret_cast<const xmlChar *>("UTF-8"));
}

void Sax2Engine::finish() {
    if (stopped_) {
        return;
    }
    // What is wrong behind the end of the root element does not always disturb the library.
    if (input_.failure()) {
        fail(*input_.failure());
    } else if (context_->wellFormed == 0) {
        fail({context_->errNo, "The document is not well-formed"});
    } else {
        stop();
    }
}

void Sax2Engine::abort() {
    fail(abortFailure());
}

Position Sax2Engine::place() const noexcept {
    if (stopped_ || documentInput_ == nullptr) {
        return position_;
    }
    return {documentInput_->line, documentInput_->col};
}

void Sax2Engine::fail(Failure failure) {
    if (!stopped_) {
        stop();
        failure_ = std::move(failure);
    }
}

void Sax2Engine::stop() noexcept {
    position_ = place();
    stopped_ = true;
}

/// Gives text to the library. What could occupy it for long between two events is checked here.
std::size_t Sax2Engine::read(char *to, std::size_t room) {
    // Each attribute and each declaration is compared with all others of its tag.
    if (context_->maxatts > 20 * xmlLimits::attributes ||
        context_->nsMax > 8 * xmlLimits::attributes) {
        fail(limitFailures::attributes());
    }
    // The library finds a name among all that it keeps, the slower, the more there are.
    if (static_cast<std::size_t>(xmlDictSize(context_->dict)) > xmlLimits::names) {
        fail(limitFailures::names());
    }
    // The library keeps what it has not done with, and blank space outside elements altogether.
    const auto held = static_cast<std::size_t>(documentInput_->end - documentInput_->base);
    if (held > xmlLimits::textSize) {
        fail(limitFailures::markupSize());
    }
    if (stopped_) {
        return 0;
    }
    const std::size_t size = input_.read(to, room);
    if (context_->inSubset != 0) {
        declare(size);
    }
    return stopped_ ? 0 : size;
}

void Sax2Engine::libraryError(xmlParserCtxtPtr context, const xmlError &error) {
    if (error.level == XML_ERR_FATAL) {
        // At the end of a text that stops short, the cause is that and not the missing rest.
        const bool atEnd = documentInput_->end - documentInput_->cur < 4;
        if (input_.failure() && atEnd) {
            fail(*input_.failure());
        } else {
            fail(failureOf(*context, error));
        }
    } else if (error.code == XML_ERR_INVALID_URI) {
        // A parameter entity with such an identifier remains undeclared, which shall be no error.
        context->hasPErefs = 1;
        misnamed_ = error.str1 != nullptr ? error.str1 : "";
    } else if (error.code == XML_WAR_UNDECLARED_ENTITY && !misnamed_.empty()) {
        if (resolvesExternalEntities_) {
            logUnread(misnamed_, "not a URI");
        }
        misnamed_.clear();
    }
}

} // namespace pelluvia::xml
