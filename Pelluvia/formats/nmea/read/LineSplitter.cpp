// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/read/LineSplitter.h>

namespace pelluvia::nmea {

/// Where the line stops, `npos` when that is still to come. (`find_first_of` takes ten times as
/// long.)
std::size_t LineSplitter::lengthOfLine(std::string_view bytes, std::size_t from) noexcept {
    for (std::size_t position = from; position != bytes.size(); ++position) {
        const char c = bytes[position];
        if (c == '\n' || c == '\r' || c == '$') {
            return position;
        }
    }
    return std::string_view::npos;
}

void LineSplitter::append(std::string_view piece) {
    if (isDropping_) {
        return;
    }
    if (begun_.size() + piece.size() > longestLine) {
        forget();
        isDropping_ = true;
        ++droppedLines_;
    } else if (begun_.empty()) {
        line_ = piece; // the usual case: nothing is copied
    } else {
        begun_.append(piece);
        line_ = begun_;
    }
}

void LineSplitter::keep() {
    if (begun_.empty()) {
        begun_ = line_;
        line_ = begun_;
    }
}

void LineSplitter::forget() noexcept {
    begun_.clear();
    line_ = {};
    isDropping_ = false;
}

} // namespace pelluvia::nmea
