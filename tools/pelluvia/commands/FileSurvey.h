// SPDX-License-Identifier: MIT

#pragma once

#include <tools/pelluvia/commands/Survey.h>

#include <Pelluvia/text/Companion.h>
#include <Pelluvia/xml/XMLParserDelegate.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace pelluvia::host {

/// What a GPX file holds, collected in one parse: what a `GPXImportCounter` counts, and of all
/// points (`wpt`, `rtept`, `trkpt`, in whatever namespace) the bounds and the first and last time.
///
/// Positions that are missing, not numbers or off the globe do not count, nor do times that cannot
/// be read or are 0, which stands for none.
///
/// Threads: one at a time.
class FileSurvey : public XMLParserDelegate {
  public:
    FileSurvey();

    [[nodiscard]] const Survey &survey() const noexcept { return survey_; }

    // The parser's side.
    [[nodiscard]] XMLVocabulary vocabulary() const override;
    [[nodiscard]] XMLInterest interestIn(const XMLElement &element,
                                         std::span<const XMLElement> around) const override;
    void didStartElement(XMLParser &parser, const XMLElement &element,
                         const XMLAttributes &attributes) override;
    void didEndElement(XMLParser &parser, const XMLElement &element) override;
    void foundCharacters(XMLParser &parser, std::string_view characters) override;

  private:
    [[nodiscard]] std::uint16_t number(std::string_view name);
    [[nodiscard]] bool isPoint(const XMLElement &element) const noexcept;
    void addPosition(const XMLAttributes &attributes);
    void addTime();

    Survey survey_;
    GPXImportCounter *counter_;           ///< that of the survey
    std::vector<std::string_view> names_; ///< those of the counter, then those it does not have
    std::vector<bool> isCounted_; ///< by the number of a name: the counter wants to know of it
    std::uint16_t wpt_;
    std::uint16_t rtept_;
    std::uint16_t trkpt_;
    std::uint16_t time_;
    std::uint16_t lat_;
    std::uint16_t lon_;

    std::size_t timeDepth_ = 0; ///< of open elements, from the time of a point on
    std::string timeText_;
    ISO8601Day day_; ///< of the last time
};

} // namespace pelluvia::host
