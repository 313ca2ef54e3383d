// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commands/FormatHint.h>

#include <tools/pelluvia/files/Descriptor.h>

#include <Pelluvia/formats/calllog/CallLogReader.h>
#include <Pelluvia/formats/nmea/NMEADriver.h>

#include <array>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace pelluvia::host {

std::string formatHint(const std::string &path) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    std::array<char, 4096> buffer{};
    const ssize_t size =
        file.isOpen() ? ::read(file.number(), buffer.data(), buffer.size()) : ssize_t{0};
    const std::string_view beginning(buffer.data(), static_cast<std::size_t>(size > 0 ? size : 0));
    if (looksLikeCallLog(beginning)) {
        return "a call log and not GPX; --from calls reads it";
    }
    if (!beginning.starts_with('<') && looksLikeNMEA(beginning)) {
        return "an NMEA log and not GPX; --from nmea reads it";
    }
    return {};
}

} // namespace pelluvia::host
