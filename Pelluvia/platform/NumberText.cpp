#include <Pelluvia/platform/NumberText.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace pelluvia {

namespace {

/// Fills the number at `out` up to the width: zeros behind its sign, or spaces before it.
char *padded(char *out, char *end, std::size_t width, char filler) noexcept {
    const auto length = static_cast<std::size_t>(end - out);
    if (length >= width) {
        return end;
    }
    char *begin = filler == '0' && *out == '-' ? out + 1 : out;
    std::move_backward(begin, end, out + width);
    std::fill_n(begin, width - length, filler);
    return out + width;
}

} // namespace

char *writeGeneral(char *out, double value) noexcept {
    return std::to_chars(out, out + maxGeneralText, value, std::chars_format::general, 10).ptr;
}

char *writeFixed(char *out, double value) noexcept {
    return std::to_chars(out, out + maxFixedText, value, std::chars_format::fixed, 6).ptr;
}

char *writeInteger(char *out, std::int64_t value) noexcept {
    return std::to_chars(out, out + maxIntegerText, value).ptr;
}

char *writeTwoDigits(char *out, std::int64_t value) noexcept {
    if (value >= 0 && value <= 9) {
        *out++ = '0';
    }
    return writeInteger(out, value);
}

char *writePaddedFixed(char *out, double value, int decimals, std::size_t width) noexcept {
    char *end =
        std::to_chars(out, out + maxFixedText, value, std::chars_format::fixed, decimals).ptr;
    return padded(out, end, width, std::isfinite(value) ? '0' : ' ');
}

char *writePaddedInteger(char *out, std::int64_t value, std::size_t width) noexcept {
    return padded(out, writeInteger(out, value), width, '0');
}

} // namespace pelluvia
