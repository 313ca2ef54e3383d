// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/calllog/internal/CallLineParser.h>

#include <Pelluvia/formats/calllog/internal/CallLineBuilder.h>

namespace pelluvia {

std::optional<CallLineFault> parseCallLine(std::string_view text, CallLine &line) {
    line.clear();
    CallLineBuilder builder(line);
    nlohmann::json::sax_parse(text.begin(), text.end(), &builder);
    return builder.fault();
}

} // namespace pelluvia
