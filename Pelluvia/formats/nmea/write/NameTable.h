// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace pelluvia::nmea {

/// The longest name that is written, in characters, so that a sentence has room for two.
inline constexpr std::size_t longestName = 24;

/// A name as it can stand in a field: at most `longestName` characters of printable ASCII. What the
/// format keeps for itself (`$*,!\^~`) and every character that is not ASCII becomes "_"; spaces
/// around it go. Empty when nothing is left that says anything.
[[nodiscard]] std::string safeName(std::string_view name);

/// Gives things their names in a log, where a name is all that tells one from the other.
///
/// A name takes a bounded number of lookups, and memory is bounded: the names of the first things
/// are remembered. Each thing that comes later and has not one of these names for itself gets a
/// number of its own, whatever its name is.
///
/// Threads: one at a time.
class NameTable {
  public:
    /// So many names are remembered: as many as a reader of logs keeps.
    static constexpr std::size_t mostNames = 100'000;

    /// `stem` is what generated names begin with; `most` takes the place of `mostNames` in tests.
    explicit NameTable(std::string stem, std::size_t most = mostNames)
        : stem_(std::move(stem)), most_(most) {}

    struct Entry {
        std::string name;
        bool isNew;            ///< false: the thing has had this name before
        bool isBeyond = false; ///< the name has a number since the table is full
    };

    /// A name for the thing that `identity` tells from others: the one wanted, made safe, where no
    /// other thing has it, or else with a number behind it. Nothing wanted: a generated one.
    [[nodiscard]] Entry nameFor(std::string_view wanted, std::string_view identity);

    /// So often a name has been looked up: the work that was done.
    [[nodiscard]] std::size_t lookups() const noexcept { return lookups_; }
    /// So many names, and beginnings of names with their last numbers, are remembered.
    [[nodiscard]] std::size_t size() const noexcept {
        return identities_.size() + lastNumbers_.size();
    }

  private:
    [[nodiscard]] bool isFull() const noexcept { return identities_.size() >= most_; }
    /// What stands before the number of a numbered name.
    struct Beginning {
        std::string_view base;
        std::string_view separator;
        std::size_t firstNumber;
    };
    [[nodiscard]] static std::string join(const Beginning &beginning, std::size_t number);
    [[nodiscard]] Entry numbered(const Beginning &beginning, std::string_view identity);
    [[nodiscard]] Entry beyond(const Beginning &beginning);

    std::string stem_;
    std::size_t most_;
    std::size_t lookups_ = 0;
    std::size_t lastBeyond_ = 0;
    // Ordered, so that no names, however they were chosen, take longer than others.
    std::map<std::string, std::string, std::less<>> identities_; ///< by name
    /// By what stands before a number and by the count of its digits: the last that was tried.
    /// Names that are cut to the same beginning share it, so that none tries what another has
    /// taken.
    std::map<std::pair<std::string, std::size_t>, std::size_t> lastNumbers_;
};

} // namespace pelluvia::nmea
