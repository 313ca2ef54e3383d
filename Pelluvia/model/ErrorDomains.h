// SPDX-License-Identifier: MIT

#pragma once

#include <string_view>

/// \file
/// The domains and codes of the errors that this framework makes. Codes are never renumbered.

namespace pelluvia {

/// Errors that GPS plug-ins, the importer and the storage authorization report to their hosts.
inline constexpr std::string_view gpsPluginErrorDomain = "com.Quorvel.GPSPlugin.ErrorDomain";
/// In that domain: there is no receiver, or no access to a folder.
inline constexpr int gpsPluginFailure = -1;
/// In that domain: a GPX file whose elements are nested wrongly.
inline constexpr int gpsPluginStructuralError = -3;

/// The importer's own errors, found as the underlying error of a structural one.
inline constexpr std::string_view gpxFileImporterErrorDomain = "com.Quorvel.GPXFileImporter";
/// In that domain: the elements are nested wrongly.
inline constexpr int gpxFileImporterStructuralError = 1;

} // namespace pelluvia
