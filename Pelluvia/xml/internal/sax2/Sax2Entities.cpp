// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/sax2/LimitFailures.h>
#include <Pelluvia/xml/internal/sax2/Sax2Engine.h>

#include <libxml/SAX2.h>
#include <libxml/parserInternals.h>
#include <new>

/// \file
/// What the engine does about entities. An external entity is read here, within the limits of
/// `ExternalEntities`, and shown to libxml2 as an internal one: so the library never opens a file,
/// and nothing of the process has to be changed to keep it from that.

namespace pelluvia::xml {

namespace {

// Marks entities that were declared external.
char externalMark;

bool isExternal(const xmlEntity &entity) {
    return entity.etype == XML_EXTERNAL_GENERAL_PARSED_ENTITY || entity._private == &externalMark;
}

/// Makes the library leave off its own check of how an entity grows: it measures a nested entity
/// by the one around it, so that it refuses harmless ones, and resolves references in a parameter
/// entity before what they refer to is declared. `EntityBudget` does that work. (The lowest bit
/// asks for a look whether the text holds a `<` when it stands in an attribute value.)
constexpr int checkedByUs = 3;

/// The path of the file that is being parsed; empty for the document itself. An internal parameter
/// entity belongs to the file that refers to it.
std::string currentPath(const xmlParserCtxt &context) {
    for (int i = context.inputNr - 1; i >= 0; --i) {
        if (context.inputTab[i]->filename != nullptr) {
            return context.inputTab[i]->filename;
        }
    }
    return {};
}

/// The value of an entity as it has to be for a carriage return in it to survive: all line ends are
/// line feeds by now, so it came from a reference, but the library would take it for a line end.
/// (Not where there is markup, in which it may separate attributes.)
std::string withProtectedReturns(std::string_view value) {
    if (value.find('<') != std::string_view::npos) {
        return std::string(value);
    }
    std::string result;
    for (const char c : value) {
        if (c == '\r') {
            result += "&#13;";
        } else {
            result += c;
        }
    }
    return result;
}

xmlChar *copyOf(std::string_view text) {
    xmlChar *copy =
        xmlStrndup(reinterpret_cast<const xmlChar *>(text.data()), static_cast<int>(text.size()));
    if (copy == nullptr) {
        throw std::bad_alloc();
    }
    return copy;
}

} // namespace

void Sax2Engine::declareEntity(xmlParserCtxtPtr context, const xmlChar *name, int type,
                               const xmlChar *publicIdentifier, const xmlChar *systemIdentifier,
                               xmlChar *content) {
    misnamed_.clear();
    const bool parameter =
        type == XML_INTERNAL_PARAMETER_ENTITY || type == XML_EXTERNAL_PARAMETER_ENTITY;
    // A predefined entity can be declared but keeps its meaning. A wrong declaration would be
    // reported to the handler of the process.
    if (!parameter && xmlGetPredefinedEntity(name) != nullptr) {
        return;
    }
    std::string protectedContent;
    if (type == XML_INTERNAL_GENERAL_ENTITY && content != nullptr) {
        protectedContent = withProtectedReturns(NameTable::text(content));
        content = reinterpret_cast<xmlChar *>(protectedContent.data()); // is copied
    }
    xmlSAX2EntityDecl(context, name, type, publicIdentifier, systemIdentifier, content);
    if (type != XML_EXTERNAL_GENERAL_PARSED_ENTITY && type != XML_EXTERNAL_PARAMETER_ENTITY) {
        return;
    }
    std::string path = currentPath(*context);
    const xmlEntity *declared =
        parameter ? xmlSAX2GetParameterEntity(context, name) : xmlSAX2GetEntity(context, name);
    if (declared != nullptr && !path.empty()) {
        declaringPaths_.try_emplace(declared, std::move(path)); // the first declaration counts
    }
}

xmlEntityPtr Sax2Engine::entity(xmlParserCtxtPtr context, const xmlChar *name) {
    const xmlEntityPtr entity = xmlSAX2GetEntity(context, name);
    if (entity == nullptr) {
        // Whether that is an error depends on the document, which the context of an entity's text
        // knows nothing of.
        context->hasPErefs = context_->hasPErefs;
        context->hasExternalSubset = context_->hasExternalSubset;
        context->standalone = context_->standalone;
        return nullptr;
    }
    if (isExternal(*entity)) {
        if (context->instate == XML_PARSER_ATTRIBUTE_VALUE) {
            entity->etype = XML_EXTERNAL_GENERAL_PARSED_ENTITY; // which makes it an error
            return entity;
        }
        load(entity);
        entity->etype = XML_INTERNAL_GENERAL_ENTITY;
    }
    entity->checked = checkedByUs;
    context->sizeentities = input_.delivered(); // what an attribute value is measured by
    const auto size = static_cast<std::size_t>(entity->length);
    spend(size);
    if (context->instate == XML_PARSER_ATTRIBUTE_VALUE && !budget_.spendInValue(size)) {
        fail(limitFailures::valueSize());
    }
    return entity;
}

xmlEntityPtr Sax2Engine::parameterEntity(xmlParserCtxtPtr context, const xmlChar *name) {
    const xmlEntityPtr entity = xmlSAX2GetParameterEntity(context, name);
    if (entity == nullptr) {
        return nullptr;
    }
    if (entity->etype == XML_EXTERNAL_PARAMETER_ENTITY) {
        load(entity);
        entity->etype = XML_INTERNAL_PARAMETER_ENTITY;
    }
    entity->checked = checkedByUs;
    const auto size = static_cast<std::size_t>(entity->length);
    spend(size);
    declare(size);
    return entity;
}

/// Gives an external entity its text, which is empty if it cannot be read.
void Sax2Engine::load(xmlEntityPtr entity) {
    if (entity->content != nullptr) {
        return;
    }
    EntityText loaded;
    if (resolvesExternalEntities_) {
        const auto path = declaringPaths_.find(entity);
        auto text = externalEntities_.load(NameTable::text(entity->SystemID),
                                           path != declaringPaths_.end() ? path->second : "");
        if (text) {
            loaded = *std::move(text);
            received_ += loaded.text.size();
        }
    }
    entity->_private = &externalMark;
    entity->content = copyOf(loaded.text);
    entity->length = static_cast<int>(loaded.text.size());
    // The library takes it for the name of the input.
    xmlFree(const_cast<xmlChar *>(entity->URI));
    entity->URI = nullptr;
    entity->URI = loaded.path.empty() ? nullptr : copyOf(loaded.path);
}

xmlParserInputPtr Sax2Engine::externalSubset(xmlParserCtxtPtr context,
                                             std::string_view systemIdentifier) {
    auto loaded = externalEntities_.load(systemIdentifier, {});
    if (!loaded) {
        return nullptr;
    }
    subset_ = std::move(loaded->text);
    received_ += subset_.size();
    declare(subset_.size());
    const xmlParserInputPtr input =
        xmlNewStringInputStream(context, reinterpret_cast<const xmlChar *>(subset_.c_str()));
    if (input != nullptr) {
        input->filename = reinterpret_cast<const char *>(copyOf(loaded->path));
    }
    return input;
}

void Sax2Engine::spend(std::size_t size) {
    if (!budget_.spend(size, input_.delivered() + received_)) {
        fail(limitFailures::amplification());
    }
}

void Sax2Engine::declare(std::size_t size) {
    if (!budget_.declare(size)) {
        fail(limitFailures::declarationsSize());
    }
}

} // namespace pelluvia::xml
