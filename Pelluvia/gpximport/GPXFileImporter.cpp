// SPDX-License-Identifier: MIT

#include <Pelluvia/gpximport/GPXFileImporter.h>

#include <Pelluvia/gpximport/internal/GPXVocabulary.h>
#include <Pelluvia/gpximport/internal/ImportState.h>
#include <Pelluvia/gpximport/internal/Interest.h>
#include <Pelluvia/system/Localization.h>

#include <utility>

namespace pelluvia {

std::shared_ptr<GPXFileImporter>
GPXFileImporter::initWithReceiver(std::shared_ptr<GPSOutputReceiver> receiver) {
    struct Instance : GPXFileImporter {
        explicit Instance(std::shared_ptr<GPSOutputReceiver> itsReceiver)
            : GPXFileImporter(std::move(itsReceiver)) {}
    };
    return std::make_shared<Instance>(std::move(receiver));
}

GPXFileImporter::GPXFileImporter(std::shared_ptr<GPSOutputReceiver> receiver)
    : state_(std::make_unique<ImportState>(*this, std::move(receiver))) {}

GPXFileImporter::~GPXFileImporter() = default;

void GPXFileImporter::setDoTracks(bool should) noexcept {
    state_->doTracks = should;
}

void GPXFileImporter::setDoRoutes(bool should) noexcept {
    state_->doRoutes = should;
}

void GPXFileImporter::setDoWaypoints(bool should) noexcept {
    state_->doWaypoints = should;
}

void GPXFileImporter::setStopToken(std::stop_token token) {
    state_->elements.stopToken = std::move(token);
}

std::optional<URL> GPXFileImporter::fileURL() const {
    return state_->fileURL();
}

void GPXFileImporter::setFileURL(std::optional<URL> newURL) {
    state_->setFileURL(std::move(newURL));
}

ErrorPtr GPXFileImporter::processFile(std::string_view filePath) {
    setFileURL(URL::fileURLWithPath(filePath));
    return processURL(fileURL());
}

ErrorPtr GPXFileImporter::processURL(const std::optional<URL> & /*url*/) {
    return state_->process({});
}

ErrorPtr GPXFileImporter::processDescriptor(int descriptor) {
    return state_->process(descriptor);
}

ErrorPtr GPXFileImporter::processData(std::string_view document) {
    return state_->process(document);
}

std::optional<GPXImportFault> GPXFileImporter::fault() const {
    return state_->fault;
}

ReadingProgress GPXFileImporter::readingProgress() const {
    return state_->readingProgress();
}

ErrorPtr GPXFileImporter::runParser(std::int32_t kind) {
    return state_->runSinglePass(kind);
}

// An operation of the object, though it needs nothing of it.
// NOLINTNEXTLINE(readability-convert-member-functions-to-static)
std::string GPXFileImporter::getLocalErrorFromString(std::string_view string) const {
    return localized(string);
}

void GPXFileImporter::abortParser(XMLParser &parser, std::string_view message) {
    state_->elements.abort(parser, message);
}

XMLVocabulary GPXFileImporter::vocabulary() const {
    return gpxVocabulary::vocabulary;
}

XMLInterest GPXFileImporter::interestIn(const XMLElement &element,
                                        std::span<const XMLElement> around) const {
    if (state_->leavesOut && isForOtherPoints(element, around, state_->elements.mode)) {
        return XMLInterest::nothing;
    }
    return pelluvia::interestIn(gpxVocabulary::namespaceOf(element),
                                gpxVocabulary::nameOf(element));
}

void GPXFileImporter::didStartElement(XMLParser &parser, const XMLElement &element,
                                      const XMLAttributes &attributes) {
    state_->elements.start(parser, element, attributes);
}

void GPXFileImporter::didEndElement(XMLParser &parser, const XMLElement &element) {
    state_->elements.end(parser, element);
}

void GPXFileImporter::foundCharacters(XMLParser &parser, std::string_view characters) {
    state_->elements.characters(parser, characters);
}

void GPXFileImporter::didStartMappingPrefix(XMLParser & /*parser*/, std::string_view /*prefix*/,
                                            std::string_view /*uri*/) {}

void GPXFileImporter::parseErrorOccurred(XMLParser &parser, const ErrorPtr &error) {
    state_->parseErrorOccurred(parser, error);
}

} // namespace pelluvia
