// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/ForeignFormat.h>

#include <Pelluvia/xml/XMLErrors.h>

#include <algorithm>
#include <array>
#include <string>

namespace pelluvia::xml {

using namespace std::string_view_literals;

namespace {

struct Format {
    std::string_view bytes; ///< at the beginning
    std::string_view message;
};

constexpr std::array formats = {
    Format{"\x1F\x8B"sv, "The file is compressed with gzip; decompress it first (gunzip)"},
    Format{"PK\x03\x04"sv, "The file is a ZIP archive; extract what is in it first (unzip)"},
    Format{"BZh"sv, "The file is compressed with bzip2; decompress it first (bunzip2)"},
    Format{"\xFD"
           "7zXZ\0"sv,
           "The file is compressed with xz; decompress it first (unxz)"},
    Format{"\x28\xB5\x2F\xFD"sv, "The file is compressed with zstd; decompress it first (unzstd)"},
    Format{"7z\xBC\xAF\x27\x1C"sv, "The file is a 7z archive; extract what is in it first (7z)"},
};

/// A character that no text has.
bool isBinary(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 && c != '\t' && c != '\n' && c != '\r' && c != '\f';
}

} // namespace

std::optional<Failure> foreignFormat(std::string_view start) {
    const auto failure = [](std::string_view message) {
        return Failure{xmlErrors::emptyDocument, std::string(message)};
    };
    for (const Format &each : formats) {
        if (start.starts_with(each.bytes)) {
            return failure(each.message);
        }
    }
    // What begins like XML is for the parser, whatever follows.
    const std::size_t first = start.find_first_not_of(" \t\r\n");
    const bool mayBeXML = first == std::string_view::npos || start[first] == '<';
    if (!mayBeXML && std::any_of(start.begin(), start.end(), isBinary)) {
        return failure("The file holds binary data, no text");
    }
    return std::nullopt;
}

} // namespace pelluvia::xml
