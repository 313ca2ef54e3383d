// SPDX-License-Identifier: MIT

#include <Pelluvia/text/Companion.h>

#include <Pelluvia/text/Calendar.h>
#include <Pelluvia/text/Text.h>

#include <cstddef>
#include <cstring>

namespace pelluvia {

namespace {

/// Goes through a text from the front. What does not match is not passed.
class Cursor {
  public:
    explicit Cursor(std::string_view text) noexcept : text_(text) {}

    [[nodiscard]] std::size_t position() const noexcept { return position_; }

    [[nodiscard]] bool isAt(char c) const noexcept {
        return position_ < text_.size() && text_[position_] == c;
    }
    [[nodiscard]] bool isAtDigit(std::size_t ahead = 0) const noexcept {
        const std::size_t place = position_ + ahead;
        return place < text_.size() && text_[place] >= '0' && text_[place] <= '9';
    }

    bool pass(char c) noexcept {
        const bool matches = isAt(c);
        position_ += matches ? 1 : 0;
        return matches;
    }
    bool passEither(char a, char b) noexcept { return pass(a) || pass(b); }

    /// A number of exactly so many digits.
    std::optional<int> digits(std::size_t count) noexcept {
        int value = 0;
        for (std::size_t ahead = 0; ahead < count; ++ahead) {
            if (!isAtDigit(ahead)) {
                return std::nullopt;
            }
            value = value * 10 + (text_[position_ + ahead] - '0');
        }
        position_ += count;
        return value;
    }

    /// The same, when the number is not above `largest`.
    std::optional<int> digits(std::size_t count, int largest) noexcept {
        const std::optional<int> value = digits(count);
        return value.has_value() && *value <= largest ? value : std::nullopt;
    }

    [[nodiscard]] bool isAtFraction() const noexcept {
        return (isAt('.') || isAt(',')) && isAtDigit(1);
    }
    /// Passes a fraction, its mark first; whether it is more than zero.
    bool passFraction() noexcept {
        bool isMore = false;
        for (++position_; isAtDigit(); ++position_) {
            isMore = isMore || text_[position_] != '0';
        }
        return isMore;
    }

  private:
    std::string_view text_;
    std::size_t position_ = 0;
};

/// The forms are not mixed: a date with hyphens goes with a time with colons.
enum class Form { Basic, Extended };

struct DateRead {
    std::int64_t days;
    Form form;
};

std::optional<DateRead> readDate(Cursor &cursor) noexcept {
    const auto year = cursor.digits(4);
    const Form form = cursor.pass('-') ? Form::Extended : Form::Basic;
    const auto month = cursor.digits(2);
    if (!year || *year == 0 || !month || (form == Form::Extended && !cursor.pass('-'))) {
        return std::nullopt;
    }
    const auto day = cursor.digits(2);
    // An impossible month has no days.
    if (!day || *day < 1 || *day > daysInMonth(*year, *month)) {
        return std::nullopt;
    }
    return DateRead{daysFromCivil({*year, *month, *day}), form};
}

/// The time of day in seconds, a fraction dropped.
std::optional<int> readTime(Cursor &cursor, Form form) noexcept {
    const bool isExtended = form == Form::Extended;
    const auto hour = cursor.digits(2, 24);
    if (!hour || (isExtended && !cursor.pass(':'))) {
        return std::nullopt;
    }
    const auto minute = cursor.digits(2, 59);
    if (!minute) {
        return std::nullopt;
    }
    std::optional<int> second = 0;
    bool isMore = false;
    if (isExtended ? cursor.pass(':') : cursor.isAtDigit()) {
        second = cursor.digits(2, 60);
        if (!second) {
            return std::nullopt;
        }
        isMore = cursor.isAtFraction() && cursor.passFraction();
    }
    if (*hour == 24 && (*minute != 0 || *second != 0 || isMore)) {
        return std::nullopt;
    }
    return (*hour * 60 + *minute) * 60 + *second;
}

/// How far the clock is ahead of UTC, in seconds; 0 where no zone is given.
std::optional<int> readZone(Cursor &cursor) noexcept {
    if (cursor.passEither('Z', 'z')) {
        return 0;
    }
    if (!cursor.isAt('+') && !cursor.isAt('-')) {
        return 0;
    }
    const int sign = cursor.isAt('-') ? -1 : 1;
    cursor.passEither('+', '-');
    const auto hours = cursor.digits(2, 23);
    std::optional<int> minutes = 0;
    if (cursor.pass(':') || cursor.isAtDigit()) {
        minutes = cursor.digits(2, 59);
    }
    if (!hours || !minutes) {
        return std::nullopt;
    }
    return sign * (*hours * 60 + *minutes) * 60;
}

std::optional<std::int64_t> readDateAndTime(Cursor &cursor) noexcept {
    const auto date = readDate(cursor);
    if (!date) {
        return std::nullopt;
    }
    std::int64_t seconds = date->days * secondsPerDay;
    const bool hasTime = cursor.passEither('T', 't') || (cursor.isAtDigit(1) && cursor.pass(' '));
    if (hasTime) {
        const auto time = readTime(cursor, date->form);
        const auto zone = time ? readZone(cursor) : std::nullopt;
        if (!zone) {
            return std::nullopt;
        }
        seconds += *time - *zone;
    }
    // A number that goes on is not the number that was read; nor are there fractions of minutes.
    if (cursor.isAtDigit() || cursor.isAtFraction()) {
        return std::nullopt;
    }
    return seconds;
}

/// The form that nearly all files have. Its parts stand at fixed places.
constexpr std::string_view usualForm = "2020-06-01T08:26:40Z";

/// The number of two digits at a place of the text; more than any part of a time where there are
/// none.
constexpr unsigned twoDigitsAt(std::string_view text, std::size_t place) noexcept {
    const unsigned tens = static_cast<unsigned char>(text[place]) - unsigned{'0'};
    const unsigned ones = static_cast<unsigned char>(text[place + 1]) - unsigned{'0'};
    return tens <= 9 && ones <= 9 ? tens * 10 + ones : 100;
}

/// The second of the day in a text that has the usual form from the T on; nothing for other texts.
/// (Second 60 and hour 24 are left to the general way.)
constexpr std::optional<int> secondOfDayInUsualForm(std::string_view text) noexcept {
    if (text.size() != usualForm.size() || text[10] != 'T' || text[13] != ':' || text[16] != ':' ||
        text[19] != 'Z') {
        return std::nullopt;
    }
    const unsigned hour = twoDigitsAt(text, 11);
    const unsigned minute = twoDigitsAt(text, 14);
    const unsigned second = twoDigitsAt(text, 17);
    if (hour > 23 || minute > 59 || second > 59) {
        return std::nullopt;
    }
    return static_cast<int>((hour * 60 + minute) * 60 + second);
}
static_assert(secondOfDayInUsualForm(usualForm) == (8 * 60 + 26) * 60 + 40);

} // namespace

std::optional<std::int64_t> scanISO8601DateAsSeconds(Scanner &scanner, ISO8601Day &day) noexcept {
    const std::string_view text = scanner.remaining();
    const std::optional<int> secondOfDay = secondOfDayInUsualForm(text);
    if (!secondOfDay) {
        return scanISO8601DateAsSeconds(scanner);
    }
    if (std::memcmp(text.data(), day.text.data(), day.text.size()) == 0) {
        scanner.skip(text.size());
        return day.firstSecond + *secondOfDay;
    }
    const std::optional<std::int64_t> seconds = scanISO8601DateAsSeconds(scanner);
    if (seconds) {
        std::memcpy(day.text.data(), text.data(), day.text.size());
        day.firstSecond = *seconds - *secondOfDay;
    }
    return seconds;
}

std::optional<std::int64_t> scanISO8601DateAsSeconds(Scanner &scanner) noexcept {
    const std::string_view text = scanner.remaining();
    const std::size_t space = leadingWhiteSpace(text);
    Cursor cursor(text.substr(space));
    const auto seconds = readDateAndTime(cursor);
    if (seconds) {
        scanner.skip(space + cursor.position());
    }
    return seconds;
}

} // namespace pelluvia
