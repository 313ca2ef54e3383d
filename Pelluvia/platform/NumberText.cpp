#include <Pelluvia/platform/NumberText.h>

#include <charconv>

namespace pelluvia {

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

} // namespace pelluvia
