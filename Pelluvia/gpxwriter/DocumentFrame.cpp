// SPDX-License-Identifier: MIT

#include <Pelluvia/gpxwriter/GPXWriter.h>

#include <Pelluvia/model/GPXNamespaces.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

namespace pelluvia {

const char GPX_Header[] =
    "<?xml version=\"1.0\" encoding=\"ISO-8859-1\" standalone=\"yes\"?>\n"
    "<gpx\n"
    "  xmlns=\"" PELLUVIA_GPX11_NAMESPACE "\"\n"
    "  version=\"1.1\" creator=\"%s\"\n"
    "  xmlns:xsi=\"" PELLUVIA_XSI_NAMESPACE "\"\n"
    "  xmlns:gpxdata=\"" PELLUVIA_GPXDATA_NAMESPACE "\"\n"
    "  xmlns:geocache=\"" PELLUVIA_GEOCACHE_NAMESPACE "\"\n"
    "  xmlns:gpxtpx=\"" PELLUVIA_GPXTPX2_NAMESPACE "\"\n"
    "  xsi:schemaLocation=\"" PELLUVIA_GPX11_NAMESPACE " " PELLUVIA_GPX11_SCHEMA
    "\n" PELLUVIA_GPXDATA_NAMESPACE " " PELLUVIA_GPXDATA_SCHEMA "\">\n";

namespace {

/// The document on a file, or null and `errno` with the reason why there is none.
GPXRef created(std::unique_ptr<OutputFile> file, const std::error_code &error) {
    GPXRef document = createDocument(std::move(file));
    if (document == nullptr) {
        errno = error.value();
    }
    return document;
}

} // namespace

GPXRef createDocument(std::unique_ptr<OutputFile> file) {
    if (file == nullptr) {
        return nullptr;
    }
    auto document = std::make_unique<GPXDocument>();
    document->file = std::move(file);
    return document.release();
}

GPXRef GPXCreate(const char *path) {
    if (path == nullptr) {
        errno = EINVAL;
        return nullptr;
    }
    std::error_code error;
    return created(OutputFile::open(path, error), error);
}

GPXRef GPXCreateWithDescriptor(int descriptor) {
    std::error_code error;
    return created(OutputFile::onBorrowedDescriptor(descriptor, error), error);
}

GPXRef GPXCreateInMemory() {
    auto document = std::make_unique<GPXDocument>();
    document->file = OutputFile::inMemory(document->memory);
    return document.release();
}

void GPXWriteHeader(GPXRef document, const char *creator) {
    constexpr std::string_view conversion = "%s";
    const std::string_view format = GPX_Header;
    const std::size_t position = format.find(conversion);
    OutputFile &file = *document->file;
    file.write(format.substr(0, position));
    file.write(creator != nullptr ? creator : "");
    file.write(format.substr(position + conversion.size()));
}

namespace {

/// Ends all elements that are open, and closes the file.
std::error_code finish(GPXDocument &document) {
    GPXWriteTrackEnd(&document);
    GPXWriteRouteEnd(&document);
    if (document.inDocumentExtensions) {
        document.file->write("</extensions>");
    }
    document.file->write("</gpx>\n");
    return document.file->close();
}

} // namespace

std::error_code closeDocument(GPXRef document) {
    const std::unique_ptr<GPXDocument> owned(document);
    return finish(*owned);
}

void GPXClose(GPXRef document) {
    // The one caller that does not want to know.
    static_cast<void>(closeDocument(document));
}

// The values of the errors are those of errno.

int GPXCloseChecked(GPXRef document) {
    return closeDocument(document).value();
}

char *GPXCloseInMemory(GPXRef document, size_t *length) {
    const std::unique_ptr<GPXDocument> owned(document);
    if (finish(*owned)) {
        return nullptr;
    }
    const std::string &text = owned->memory;
    auto *copy = static_cast<char *>(std::malloc(text.size() + 1));
    if (copy != nullptr) {
        std::memcpy(copy, text.c_str(), text.size() + 1);
        if (length != nullptr) {
            *length = text.size();
        }
    }
    return copy;
}

int GPXFlush(GPXRef document) {
    return document->file->flush().value();
}

int GPXSync(GPXRef document) {
    return document->file->sync().value();
}

int GPXWriteFailure(GPXRef document) {
    return document->file->failure().value();
}

} // namespace pelluvia
