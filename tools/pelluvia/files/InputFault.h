// SPDX-License-Identifier: MIT

#pragma once

#include <tools/pelluvia/commandline/ExitStatus.h>

#include <Pelluvia/values/Error.h>

#include <cstdint>
#include <string>

namespace pelluvia::host {

/// Why a source could not be read to its end.
struct InputFault {
    std::int64_t line = 0;   ///< from 1; 0 when it is not known
    std::int64_t column = 0; ///< from 1; 0 when it is not known
    std::string message;
    int status = exitStatus::badInput; ///< what the program ends with

    /// The fault that an XML parser or an importer returned. Of an abort by the importer it knows
    /// the place only; `abortMessage` is then what the importer reported.
    [[nodiscard]] static InputFault from(const Error &error, const std::string &abortMessage);

    /// "file:line:column: message", as far as the place is known.
    [[nodiscard]] std::string text(const std::string &file) const;
};

} // namespace pelluvia::host
