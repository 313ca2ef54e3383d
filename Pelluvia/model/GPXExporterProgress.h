// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Export.h>

namespace pelluvia {

/// Watches the progress of a receiver. Given to it with `setProgress`; called directly on the
/// thread that drives the receiver, so keep it short.
class PELLUVIA_EXPORT GPXExporterProgress {
  public:
    virtual ~GPXExporterProgress() = default;

    /// A transfer of `kind` starts; `count` items are expected, 0 when that is not known. For
    /// tracks of the importer the count is that of the segments, while progress counts points:
    /// expect the index to pass it.
    virtual void gpxStartTransfer(int kind, int count) = 0;
    /// One more item was handled: `index` so far in this transfer, 1 for the first.
    virtual void gpxProgress(int kind, int index) = 0;
    /// The transfer of `kind` ends.
    virtual void gpxEndTransfer(int kind) = 0;
};

} // namespace pelluvia
