#pragma once

#include <Pelluvia/platform/Export.h>
#include <Pelluvia/platform/XMLParserDelegate.h>

#include <cstdint>

namespace pelluvia {

/// Counts the elements of a GPX file.
class PELLUVIA_EXPORT GPXImportCounter : public XMLParserDelegate {};

} // namespace pelluvia
