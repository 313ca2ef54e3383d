// SPDX-License-Identifier: MIT

#include <Pelluvia/gpxwriter/internal/Elements.h>

#include <Pelluvia/gpxwriter/GPXWriter.h>
#include <Pelluvia/text/Companion.h>
#include <Pelluvia/text/NumberText.h>

#include <cstring>

namespace pelluvia {

void writeEscaped(OutputFile &file, const char *text) {
    TextCursor cursor(file.reserve(escapedCapacity));
    appendEscaped(cursor, text);
    file.commit(cursor.position());
}

void appendEscaped(TextCursor &text, const char *value) noexcept {
    char *const begin = text.position();
    SkerryCStringByMakingStandardXMLEntities(begin, value, escapedCapacity);
    text = TextCursor(begin + std::strlen(begin));
}

void writeIntegerBetween(OutputFile &file, std::string_view before, std::int32_t value,
                         std::string_view after) {
    file.write(before);
    file.commit(writeInteger(file.reserve(maxIntegerText), value));
    file.write(after);
}

void writeFixedBetween(OutputFile &file, std::string_view before, double value,
                       std::string_view after) {
    file.write(before);
    file.commit(writeFixed(file.reserve(maxFixedText), value));
    file.write(after);
}

void GPXWriteElementWithString(GPXRef document, const char *name, const char *value) {
    OutputFile &file = *document->file;
    file.write("<");
    file.write(name);
    file.write(">");
    writeEscaped(file, value);
    file.write("</");
    file.write(name);
    file.write(">\n");
}

void GPXWriteElementWithStringIfNotEmpty(GPXRef document, const char *name, const char *value) {
    if (value != nullptr) {
        GPXWriteElementWithString(document, name, value);
    }
}

} // namespace pelluvia
