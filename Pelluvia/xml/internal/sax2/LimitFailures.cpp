// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/sax2/LimitFailures.h>

#include <Pelluvia/xml/XMLErrors.h>
#include <Pelluvia/xml/XMLLimits.h>

#include <cstddef>
#include <cstdint>
#include <libxml/xmlerror.h>
#include <string>
#include <string_view>

namespace pelluvia::xml::limitFailures {

namespace {

/// As prose has it: 10,000,000.
std::string grouped(std::uint64_t number) {
    std::string text = std::to_string(number);
    for (std::size_t digits = 3; digits < text.size(); digits += 4) {
        text.insert(text.size() - digits, 1, ',');
    }
    return text;
}

/// `before`, the limit, `behind`.
Failure exceeded(std::string_view before, std::uint64_t limit, std::string_view behind) {
    return {xmlErrors::limit, std::string(before).append(grouped(limit)).append(behind)};
}

} // namespace

Failure depth() {
    return exceeded("Elements are nested more than ", xmlLimits::depth, " deep");
}

Failure textSize() {
    return exceeded("The text between two tags is longer than ", xmlLimits::textSize, " bytes");
}

Failure markupSize() {
    return exceeded("A tag, other markup, or blank space is longer than ", xmlLimits::textSize,
                    " bytes");
}

Failure valueSize() {
    Failure failure = exceeded("An attribute value is longer than ", xmlLimits::textSize, " bytes");
    failure.code = XML_ERR_ATTRIBUTE_NOT_FINISHED; // the library's for a value without entities
    return failure;
}

Failure declarationsSize() {
    return exceeded("The document type declaration is longer than ", xmlLimits::declarationsSize,
                    " bytes");
}

Failure attributes() {
    return exceeded("A tag has more than ", xmlLimits::attributes,
                    " attributes, or as many namespace declarations are in force");
}

Failure names() {
    return exceeded("There are more than ", xmlLimits::names, " different names");
}

Failure nameMemory() {
    return exceeded("The different names take more than ", xmlLimits::nameMemory, " bytes");
}

Failure amplification() {
    Failure failure =
        exceeded("Entities and default values add more than ", xmlLimits::amplificationAllowance,
                 " bytes and " + grouped(xmlLimits::amplificationFactor) +
                     " times what was read to the document");
    failure.code = xmlErrors::entities;
    return failure;
}

Failure entityDepth() {
    return {xmlErrors::entities,
            "Entities refer to themselves, or to one another more than 40 deep"};
}

} // namespace pelluvia::xml::limitFailures
