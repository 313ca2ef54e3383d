#pragma once

#include <Pelluvia/model/GPSOutputReceiver.h>
#include <Pelluvia/platform/Error.h>
#include <Pelluvia/platform/Export.h>
#include <Pelluvia/platform/URL.h>
#include <Pelluvia/platform/XMLParserDelegate.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace pelluvia {

/// Reads a GPX file into a receiver.
class PELLUVIA_EXPORT GPXFileImporter : public XMLParserDelegate {
  public:
    [[nodiscard]] static std::shared_ptr<GPXFileImporter>
    initWithReceiver(std::shared_ptr<GPSOutputReceiver> receiver);
    void setDoTracks(bool doTracks) noexcept;
    void setDoRoutes(bool doRoutes) noexcept;
    void setDoWaypoints(bool doWaypoints) noexcept;
    [[nodiscard]] std::optional<URL> fileURL() const;
    void setFileURL(std::optional<URL> url);
    [[nodiscard]] ErrorPtr processFile(std::string_view path);
    [[nodiscard]] ErrorPtr processURL(const std::optional<URL> &url);
};

} // namespace pelluvia
