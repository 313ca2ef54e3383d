#pragma once

#include <Pelluvia/model/KnownKeys.h>
#include <Pelluvia/values/Export.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace pelluvia {

/// The key of a dictionary entry: an interned string in four bytes, compared by one integer
/// comparison.
///
/// The names in `knownKeyNames` have fixed numbers and cost nothing to copy. Any other name is kept
/// in a process-wide pool for as long as a key of that name lives, so that the invented keys of a
/// file go with the file; their places are used again.
///
/// A key that was moved from is the key "count": assign to it or let it go.
///
/// Threads: keys may be made, copied and destroyed on any thread at any time.
class PELLUVIA_EXPORT Key {
  public:
    /// The key of a name in `knownKeyNames`; any other name does not compile.
    [[nodiscard]] static consteval Key known(std::string_view name) {
        for (std::uint32_t id = 0; id < knownKeyNames.size(); ++id) {
            if (knownKeyNames[id] == name) {
                return Key(id);
            }
        }
        throw std::invalid_argument("not one of the known key names");
    }

    /// The key of any name, the empty one included.
    explicit Key(std::string_view name);

    constexpr Key(const Key &other) noexcept : id_(other.id_) {
        if (isPooled()) {
            retainPooled();
        }
    }
    constexpr Key(Key &&other) noexcept : id_(std::exchange(other.id_, 0)) {}
    constexpr Key &operator=(Key other) noexcept {
        std::swap(id_, other.id_);
        return *this;
    }
    constexpr ~Key() {
        if (isPooled()) {
            releasePooled();
        }
    }

    /// The name; the view is valid while this key, or another of the same name, lives.
    [[nodiscard]] std::string_view name() const;

    friend constexpr bool operator==(const Key &a, const Key &b) noexcept { return a.id_ == b.id_; }

  private:
    constexpr explicit Key(std::uint32_t id) noexcept : id_(id) {}
    [[nodiscard]] constexpr bool isPooled() const noexcept { return id_ >= knownKeyNames.size(); }
    void retainPooled() const noexcept;
    void releasePooled() const noexcept;

    std::uint32_t id_;
};

} // namespace pelluvia
