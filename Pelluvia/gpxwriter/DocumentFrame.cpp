#include <Pelluvia/gpxwriter/GPXWriter.h>

#include <Pelluvia/model/GPXNamespaces.h>

#include <cerrno>
#include <string_view>

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

GPXRef GPXCreate(const char *path) {
    if (path == nullptr) {
        errno = EINVAL;
        return nullptr;
    }
    std::error_code error;
    std::unique_ptr<OutputFile> file = OutputFile::open(path, error);
    if (file == nullptr) {
        errno = error.value();
        return nullptr;
    }
    auto document = std::make_unique<GPXDocument>();
    document->file = std::move(file);
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

std::error_code closeDocument(GPXRef document) {
    const std::unique_ptr<GPXDocument> owned(document);
    GPXWriteTrackEnd(document);
    GPXWriteRouteEnd(document);
    if (document->inDocumentExtensions) {
        document->file->write("</extensions>");
    }
    document->file->write("</gpx>\n");
    return document->file->close();
}

void GPXClose(GPXRef document) {
    // The one caller that does not want to know.
    static_cast<void>(closeDocument(document));
}

} // namespace pelluvia
