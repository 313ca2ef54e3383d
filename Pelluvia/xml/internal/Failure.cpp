// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/Failure.h>

#include <Pelluvia/xml/XMLErrors.h>

#include <cstddef>
#include <cstring>

namespace pelluvia::xml {

namespace {

/// The length of the UTF-8 sequence that starts with this byte; 0 when none does.
std::size_t sequenceLength(unsigned char lead) {
    if (lead < 0x80) {
        return 1;
    }
    if (lead >= 0xC2 && lead <= 0xDF) {
        return 2;
    }
    if (lead >= 0xE0 && lead <= 0xEF) {
        return 3;
    }
    return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

bool isContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80;
}

/// The length of the character that `text` starts with; 0 when it does not start with one.
std::size_t characterLength(std::string_view text) {
    const std::size_t length = sequenceLength(static_cast<unsigned char>(text.front()));
    if (length == 0 || length > text.size()) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if (!isContinuation(text[i])) {
            return 0;
        }
    }
    // The second byte also tells overlong forms, surrogates and what lies beyond Unicode.
    const auto second = length > 1 ? static_cast<unsigned char>(text[1]) : 0U;
    const auto lead = static_cast<unsigned char>(text.front());
    const bool wrong = (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
                       (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F);
    return wrong ? 0 : length;
}

bool isControl(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7F;
}

} // namespace

Failure abortFailure() {
    return {NSXMLParserDelegateAbortedParseError, "The parse was aborted."};
}

ErrorPtr makeError(const Failure &failure, Position position) {
    return Error::make(NSXMLParserErrorDomain, failure.code,
                       {{std::string(NSLocalizedDescriptionKey), oneLine(failure.message)},
                        {std::string(NSXMLParserErrorLineNumber), position.line},
                        {std::string(NSXMLParserErrorColumn), position.column}});
}

std::string oneLine(std::string_view text) {
    std::string line;
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length == 1 && isControl(text.front())) {
            line += ' ';
        } else {
            line.append(text.substr(0, length));
        }
        text.remove_prefix(length != 0 ? length : 1);
    }
    const std::size_t first = line.find_first_not_of(' ');
    if (first == std::string::npos) {
        return {};
    }
    return line.substr(first, line.find_last_not_of(' ') - first + 1);
}

std::string systemReason(int errorNumber) {
#if defined(__GLIBC__) && (__GLIBC__ > 2 || __GLIBC_MINOR__ >= 32)
    const char *text = strerrordesc_np(errorNumber);
#else
    const char *text = nullptr;
#endif
    return text != nullptr ? std::string(text) : "system error " + std::to_string(errorNumber);
}

} // namespace pelluvia::xml
