// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/KnownKeys.h>
#include <Pelluvia/values/Export.h>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

namespace pelluvia {

/// The key of a dictionary entry: an interned string in four bytes, compared by one integer
/// comparison.
///
/// The names in `knownKeyNames` have fixed numbers, which are compiled into who uses them, and cost
/// nothing to copy. Any other name is kept in a process-wide pool, with a number from
/// `firstPooledNumber` on, for as long as a key of that name lives, so that the invented keys of a
/// file go with the file; their places are used again.
///
/// A key that was moved from is the key "count": assign to it or let it go.
///
/// Threads: keys may be made, copied and destroyed on any thread at any time.
class PELLUVIA_EXPORT Key {
  public:
    /// Where the numbers of the names begin that are not known at compile time: far behind those
    /// that ever will be, so that old and new headers and libraries agree.
    static constexpr std::uint32_t firstPooledNumber = 65'536;

    /// The key of a name in `knownKeyNames`; any other name does not compile.
    [[nodiscard]] static consteval Key known(std::string_view name) {
        for (std::uint32_t number = 0; number < knownKeyNames.size(); ++number) {
            if (knownKeyNames[number] == name) {
                return Key(number);
            }
        }
        notOneOfTheKnownKeyNames();
        return Key(0);
    }

    /// The key of any name, the empty one included.
    explicit Key(std::string_view name);

    constexpr Key(const Key &other) noexcept : number_(other.number_) {
        if (isPooled()) {
            retainPooled();
        }
    }
    constexpr Key(Key &&other) noexcept : number_(std::exchange(other.number_, 0)) {}
    constexpr Key &operator=(Key other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    constexpr ~Key() {
        if (isPooled()) {
            releasePooled();
        }
    }

    /// Whether the key was made by `known`, or could have been.
    [[nodiscard]] constexpr bool isKnown() const noexcept { return number_ < firstPooledNumber; }

    /// The name; the view is valid while this key, or another of the same name, lives. A known key
    /// that was compiled with a newer header than the library has no name there: the empty one. It
    /// is still different from every other key.
    [[nodiscard]] std::string_view name() const;

    friend constexpr bool operator==(const Key &a, const Key &b) noexcept {
        return a.number_ == b.number_;
    }

  private:
    constexpr explicit Key(std::uint32_t number) noexcept : number_(number) {}
    /// Not for constant expressions: calling it is the error message of `known`.
    static void notOneOfTheKnownKeyNames();
    [[nodiscard]] constexpr bool isPooled() const noexcept { return !isKnown(); }
    void retainPooled() const noexcept;
    void releasePooled() const noexcept;

    std::uint32_t number_;
};

} // namespace pelluvia
