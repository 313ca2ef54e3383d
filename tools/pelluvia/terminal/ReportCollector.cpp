// SPDX-License-Identifier: MIT

#include <tools/pelluvia/terminal/ReportCollector.h>

#include <utility>

namespace pelluvia::host {

namespace {

std::string textOfReport(const Report &report) {
    if (const auto *text = std::get_if<std::string>(&report)) {
        return *text;
    }
    const auto *error = std::get_if<ErrorPtr>(&report);
    return error != nullptr && *error != nullptr ? textOf(**error) : "no message";
}

/// Without white space at the end, which some sources of texts add.
std::string trimmed(std::string text) {
    const std::size_t last = text.find_last_not_of(" \t\r\n");
    text.resize(last == std::string::npos ? 0 : last + 1);
    return text;
}

} // namespace

// A selector passes its argument by value.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
void ReportCollector::take(Report report) {
    if (collected_.texts.size() == most) {
        ++collected_.more;
        return;
    }
    std::string text = textOfReport(report);
    if (text.size() > longestText) {
        text.resize(longestText);
        text += "...";
    }
    collected_.texts.push_back(std::move(text));
}

ReportCollector::Texts ReportCollector::collected() {
    return std::exchange(collected_, {});
}

std::string textOf(const Error &error) {
    std::string text = trimmed(error.localizedDescription());
    const ErrorValue *advice = error.find(NSLocalizedRecoverySuggestionErrorKey);
    const auto *words = advice != nullptr ? std::get_if<std::string>(advice) : nullptr;
    if (words != nullptr && !words->empty()) {
        text += (text.ends_with('.') ? " " : ". ") + *words;
    }
    return text;
}

} // namespace pelluvia::host
