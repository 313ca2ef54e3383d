// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/write/RouteSentences.h>

#include <Pelluvia/formats/nmea/write/NameTable.h>

#include <Pelluvia/nmea/NMEAUtils.h>

#include <utility>

namespace pelluvia::nmea {

namespace {

constexpr std::string_view address = "GPRTE";
constexpr std::size_t frame = 6; // "$", "*", two digits, CR and LF
constexpr std::size_t longestBody = NMEAUtils::longestSentence - frame;

// Of how many sentences a route consists, and which each is.
constexpr std::size_t longestNumber = 6;
constexpr std::size_t longestHeader =
    address.size() + 2 * (1 + longestNumber) + 2 + 1 + longestName;
static_assert(longestHeader + 1 + longestName <= longestBody, "there is room for a name");

/// The lists of names, each with a comma before each name, when both numbers have so many digits.
std::vector<std::string> split(std::size_t headerLength, const std::vector<std::string> &names) {
    std::vector<std::string> lists(1);
    for (const std::string &name : names) {
        if (headerLength + lists.back().size() + 1 + name.size() > longestBody) {
            lists.emplace_back();
        }
        lists.back().append(",").append(name);
    }
    return lists;
}

} // namespace

std::vector<std::string> routeSentences(std::string_view identifier,
                                        const std::vector<std::string> &names) {
    // How many sentences there are depends on how long their numbers are, and the other way round.
    std::vector<std::string> lists;
    std::size_t digits = 0;
    do {
        ++digits;
        const std::size_t headerLength =
            address.size() + 2 * (1 + digits) + 2 + 1 + identifier.size();
        lists = split(headerLength, names);
    } while (std::to_string(lists.size()).size() > digits);

    const std::string total = std::to_string(lists.size());
    int number = 0;
    for (std::string &list : lists) {
        std::string body(address);
        body.append(",").append(total).append(",").append(std::to_string(++number));
        body.append(",c,").append(identifier).append(list);
        list = std::move(body);
    }
    return lists;
}

} // namespace pelluvia::nmea
