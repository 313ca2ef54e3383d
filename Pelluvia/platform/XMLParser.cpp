#include <Pelluvia/platform/XMLParser.h>

#include <Pelluvia/platform/xml/Sax2Engine.h>

#include <libxml/xmlerror.h>

namespace pelluvia {

std::unique_ptr<XMLParser> XMLParser::initWithContentsOfURL(const std::optional<URL> &url) {
    if (!url) {
        return nullptr;
    }
    return std::make_unique<XMLParser>(std::make_unique<xml::FileSource>(url->path()));
}

XMLParser::XMLParser(std::unique_ptr<xml::Source> source) : source_(std::move(source)) {}

XMLParser::~XMLParser() = default;

void XMLParser::setDelegate(XMLParserDelegate *delegate) noexcept {
    delegate_ = delegate;
}

void XMLParser::setShouldResolveExternalEntities(bool should) noexcept {
    resolvesExternalEntities_ = should;
}

bool XMLParser::parse() {
    if (parsed_) {
        return false;
    }
    parsed_ = true;
    XMLParserDelegate *const delegate = delegate_;
    if (const int errorNumber = source_->open(); errorNumber != 0) {
        error_ = xml::makeError(
            {XML_IO_LOAD_ERROR, "The file cannot be opened: " + xml::systemReason(errorNumber)},
            {});
    } else {
        engine_ =
            std::make_unique<xml::Sax2Engine>(*this, *source_, delegate, resolvesExternalEntities_);
        error_ = engine_->run();
    }
    if (error_ && delegate != nullptr) {
        delegate->parseErrorOccurred(*this, error_);
    }
    return !error_;
}

void XMLParser::abortParsing() {
    if (engine_) {
        engine_->abort();
    }
}

const ErrorPtr &XMLParser::parserError() const noexcept {
    return error_;
}

std::int64_t XMLParser::lineNumber() const noexcept {
    return engine_ ? engine_->position().line : 0;
}

std::int64_t XMLParser::columnNumber() const noexcept {
    return engine_ ? engine_->position().column : 0;
}

} // namespace pelluvia
