#pragma once

#include <Pelluvia/model/GPSOutputReceiver.h>
#include <Pelluvia/model/GPXExporterProgress.h>
#include <Pelluvia/platform/Export.h>
#include <Pelluvia/platform/MainThread.h>

#include <memory>
#include <string>
#include <string_view>
#include <system_error>

namespace pelluvia {

/// Writes the stream of calls to a GPX 1.1 file.
class PELLUVIA_EXPORT GPXExporter : public GPSOutputReceiver,
                                    public std::enable_shared_from_this<GPXExporter> {
  public:
    static void setCreator(std::string_view creator);
    [[nodiscard]] static std::shared_ptr<GPXExporter> init();
    [[nodiscard]] static std::shared_ptr<GPXExporter> initWithPath(const std::string &path);

    template <class Target>
    void setCompletionObject(std::shared_ptr<Target> object,
                             void (Target::*andSelector)(std::shared_ptr<GPXExporter>));
    template <class Target>
    void setErrorObject(std::shared_ptr<Target> object, void (Target::*andSelector)(Report));
    void setProgress(std::shared_ptr<GPXExporterProgress> progress);

    /// The first failure to write or close the document; no error while all went well. To be asked
    /// after the document was closed.
    [[nodiscard]] std::error_code writeFailure() const noexcept;
};

} // namespace pelluvia
