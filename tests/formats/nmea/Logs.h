// SPDX-License-Identifier: MIT

#pragma once

#include <tests/formats/nmea/CallList.h>

#include <Pelluvia/formats/nmea/read/Decoder.h>
#include <Pelluvia/formats/nmea/read/LineSplitter.h>

#include <Pelluvia/nmea/NMEAUtils.h>

#include <initializer_list>
#include <string>
#include <string_view>

namespace pelluvia::testing {

/// A sentence of a body, with its checksum and line end.
inline std::string sentence(std::string_view body) {
    return NMEAUtils::addChecksumToNMEASentence(body).value_or("") + "\r\n";
}

/// A log of the bodies.
inline std::string logOf(std::initializer_list<std::string_view> bodies) {
    std::string log;
    for (const std::string_view body : bodies) {
        log += sentence(body);
    }
    return log;
}

/// What became of a log.
struct Decoded {
    CallList list;
    NMEATally tally;
};

inline Decoded decode(std::string_view log, const nmea::DecoderOptions &options = {}) {
    Decoded result;
    nmea::Decoder decoder(result.list, options);
    nmea::LineSplitter splitter;
    const auto use = [&](std::string_view line, nmea::LineEnd end) { decoder.addLine(line, end); };
    splitter.feed(log, use);
    splitter.finish(use);
    decoder.finish();
    result.tally = decoder.tally();
    result.tally.tooLong = splitter.droppedLines();
    return result;
}

} // namespace pelluvia::testing
