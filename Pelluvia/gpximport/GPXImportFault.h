// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <string>

namespace pelluvia {

/// Why a GPX file was not imported to its end, and where: the whole story of a failed import, which
/// otherwise lies partly in the error that the import returned, partly in the one that its receiver
/// was told of.
struct GPXImportFault {
    /// What is wrong, for a reader of the user's language.
    std::string message;
    /// The file, as it was given; empty for what was read from a descriptor or from memory.
    std::string path;
    /// Where in the file, counted from 1, columns in characters; 0 when there is no such place.
    std::int64_t line = 0;
    std::int64_t column = 0;
};

} // namespace pelluvia
