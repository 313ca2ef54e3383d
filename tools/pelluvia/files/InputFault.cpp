// SPDX-License-Identifier: MIT

#include <tools/pelluvia/files/InputFault.h>

#include <tools/pelluvia/terminal/ReportCollector.h>

#include <Pelluvia/xml/XMLParser.h>

namespace pelluvia::host {

InputFault InputFault::from(const Error &error, const std::string &abortMessage) {
    const bool isAbort = error.domain() == NSXMLParserErrorDomain &&
                         error.code() == NSXMLParserDelegateAbortedParseError;
    return {.line = error.integer(NSXMLParserErrorLineNumber),
            .column = error.integer(NSXMLParserErrorColumn),
            .message = isAbort && !abortMessage.empty() ? abortMessage : textOf(error)};
}

std::string InputFault::text(const std::string &file) const {
    std::string result = file + ":";
    if (line > 0) {
        result += std::to_string(line) + ":";
        if (column > 0) {
            result += std::to_string(column) + ":";
        }
    }
    return result + " " + message;
}

} // namespace pelluvia::host
