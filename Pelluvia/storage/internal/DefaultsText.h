// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/storage/UserDefaults.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pelluvia::storage {

/// The content of a defaults file: a group of entries, each on a line of its own,
///
///     [Defaults]
///     GPSStorageAuthorization:/home/me/GPS%20tracks=data:UGVsbHV2aWE=
///
/// Bytes of a key or a text that would not survive there are written as % and two digits. What a
/// user adds by hand is kept as it is: comments (behind # or ;), blank lines, other groups, and
/// values of types that are not known here. A byte order mark at the beginning is passed over.
///
/// A line that cannot be understood costs no other. What stands before the first group, or behind
/// a group's damaged name, counts as under [Defaults].
///
/// Threads: one at a time.
class DefaultsText {
  public:
    /// No entries.
    DefaultsText() = default;
    /// Understands what it can of any text.
    [[nodiscard]] static DefaultsText parsed(std::string_view text);

    /// How many lines were not understood; `text` leaves them out.
    [[nodiscard]] std::size_t badLineCount() const noexcept { return badLineCount_; }
    /// The number of the first of them, from 1; 0 without one.
    [[nodiscard]] std::size_t firstBadLine() const noexcept { return firstBadLine_; }

    /// What stands under the key, in the last line that has it; nothing, too, for a type that is
    /// not known.
    [[nodiscard]] std::optional<DefaultsObject> find(std::string_view key) const;
    void set(std::string_view key, const DefaultsObject &object);
    void remove(std::string_view key);

    [[nodiscard]] std::string text() const;

  private:
    enum class Kind {
        Entry,      ///< of ours
        OurGroup,   ///< the line with the name of our group
        OtherGroup, ///< the line with the name of another one
        AsItStands, ///< lines that mean nothing to us
    };
    struct Line {
        Kind kind = Kind::AsItStands;
        std::string text; ///< without the last line end
        std::string key;  ///< of an entry
    };

    void add(std::string_view text, bool &isInOurGroup);
    void keep(Kind kind, std::string_view text, std::string key = {});
    void addBadLine() noexcept;
    [[nodiscard]] std::optional<std::size_t> entryOf(std::string_view key) const;

    std::vector<Line> lines_;
    std::size_t lineCount_ = 0;
    std::size_t badLineCount_ = 0;
    std::size_t firstBadLine_ = 0;
};

} // namespace pelluvia::storage
