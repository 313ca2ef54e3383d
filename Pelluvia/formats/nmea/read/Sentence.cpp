// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/read/Sentence.h>

#include <Pelluvia/nmea/NMEAUtils.h>
#include <Pelluvia/text/Text.h>

#include <array>
#include <utility>

namespace pelluvia::nmea {

namespace {

constexpr std::size_t talkerLength = 2;
constexpr std::size_t addressLength = 5;
constexpr std::size_t checksumLength = 3; // "*" and two digits

constexpr std::array<std::pair<std::string_view, SentenceType>, 8> types = {{
    {"RMC", SentenceType::RMC},
    {"GGA", SentenceType::GGA},
    {"GLL", SentenceType::GLL},
    {"VTG", SentenceType::VTG},
    {"GSA", SentenceType::GSA},
    {"ZDA", SentenceType::ZDA},
    {"WPL", SentenceType::WPL},
    {"RTE", SentenceType::RTE},
}};

SentenceType typeOf(std::string_view address) noexcept {
    // Addresses that begin with "P" are a maker's own.
    if (address.size() == addressLength && address.front() != 'P') {
        for (const auto &[name, type] : types) {
            if (address.substr(talkerLength) == name) {
                return type;
            }
        }
    }
    return SentenceType::Other;
}

LineKind kindOfUnread(std::string_view line) noexcept {
    line.remove_prefix(leadingWhiteSpace(line));
    line.remove_suffix(trailingWhiteSpace(line));
    if (line.empty()) {
        return LineKind::Blank;
    }
    if (line.front() == '!') {
        return LineKind::Foreign;
    }
    const bool hasChecksum = line.front() == '$' && line.size() > checksumLength &&
                             line[line.size() - checksumLength] == '*';
    return hasChecksum ? LineKind::BadChecksum : LineKind::Garbage;
}

} // namespace

LineKind Sentence::read(std::string_view line) {
    auto body = NMEAUtils::checkAndTrimNMEASentence(line);
    if (!body) {
        return kindOfUnread(line);
    }
    body_ = std::move(*body);
    fields_.resize(1);
    fields_[0] = std::string_view(body_).substr(0, body_.find(','));
    type_ = typeOf(fields_[0]);
    if (type_ == SentenceType::Other) {
        return LineKind::Sentence;
    }
    if (body_.find('*') != std::string::npos) {
        return LineKind::BadChecksum;
    }
    hasChecksum_ = line.find('*') != std::string_view::npos;
    split();
    return LineKind::Sentence;
}

std::string_view Sentence::talker() const noexcept {
    return type_ != SentenceType::Other ? fields_[0].substr(0, talkerLength) : std::string_view();
}

void Sentence::split() {
    const std::string_view body = body_;
    if (body.size() == addressLength) {
        return;
    }
    std::size_t begin = addressLength + 1;
    // Most fields are a few bytes long or empty: a search function would cost more than it saves.
    for (std::size_t position = begin; position != body.size(); ++position) {
        if (body[position] == ',') {
            fields_.push_back(body.substr(begin, position - begin));
            begin = position + 1;
        }
    }
    fields_.push_back(body.substr(begin));
}

} // namespace pelluvia::nmea
