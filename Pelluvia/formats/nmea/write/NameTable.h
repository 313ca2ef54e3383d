#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

namespace pelluvia::nmea {

/// The longest name that is written, in characters, so that a sentence has room for two.
inline constexpr std::size_t longestName = 24;

/// A name as it can stand in a field: at most `longestName` characters of printable ASCII. What the
/// format keeps for itself (`$*,!\^~`) and every character that is not ASCII becomes "_"; spaces
/// around it go. Empty when nothing is left that says anything.
[[nodiscard]] std::string safeName(std::string_view name);

/// Gives things their names in a log, where a name is all that tells one from the other.
///
/// Memory grows with the names. Threads: one at a time.
class NameTable {
  public:
    /// `stem` is what generated names begin with.
    explicit NameTable(std::string stem) : stem_(std::move(stem)) {}

    struct Entry {
        std::string name;
        bool isNew; ///< false: the thing has had this name before
    };

    /// A name for the thing that `identity` tells from others: the one wanted, made safe, where no
    /// other thing has it, or else with a number behind it. Nothing wanted: a generated one.
    [[nodiscard]] Entry nameFor(std::string_view wanted, std::string_view identity);

  private:
    std::string stem_;
    std::unordered_map<std::string, std::string> identities_; ///< by name
    std::unordered_map<std::string, int> lastNumbers_;        ///< by the name before the number
};

} // namespace pelluvia::nmea
