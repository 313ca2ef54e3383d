#pragma once

#include <Pelluvia/storage/UserDefaults.h>
#include <Pelluvia/storage/internal/GLibPointers.h>

#include <optional>
#include <string>
#include <string_view>

namespace pelluvia::storage {

/// The content of a defaults file: a key file of one group, each entry on a line of its own,
///
///     [Defaults]
///     GPSStorageAuthorization:/home/me/GPS%20tracks=data:UGVsbHV2aWE=
///
/// Bytes of a key or a text that would not survive there are written as % and two digits. What a
/// user adds by hand, comments and other groups, is kept.
///
/// Threads: one at a time.
class DefaultsText {
  public:
    /// No entries.
    DefaultsText();
    /// Nothing for a text that is not such a file. An empty text has no entries.
    [[nodiscard]] static std::optional<DefaultsText> parsed(std::string_view text);

    /// What stands under the key; nothing, too, where it cannot be understood.
    [[nodiscard]] std::optional<DefaultsObject> find(std::string_view key) const;
    void set(std::string_view key, const DefaultsObject &object);
    void remove(std::string_view key);

    [[nodiscard]] std::string text() const;

  private:
    GKeyFilePointer file_;
};

} // namespace pelluvia::storage
