// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Data.h>
#include <Pelluvia/values/Export.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <variant>

/// \file
/// Settings that outlive the process. Part of the storage component (link `Pelluvia::storage`).

namespace pelluvia {

/// What is kept under a key: bytes, a text, an integer or a real number.
using DefaultsObject = std::variant<Data, std::string, std::int64_t, double>;

/// The user defaults of an application: objects under keys, in a file of the user's.
///
///     UserDefaults::setApplicationIdentifier("org.example.Tracks");
///     const UserDefaults defaults = UserDefaults::standardUserDefaults();
///     defaults.setObject("metric", "units");
///     defaults.stringForKey("units"); // "metric", in this and every later process
///
/// A key is any bytes, the empty ones included; so is a text. What is read is what the file holds
/// at that moment, so a change of another process is seen at once.
///
/// The file is `defaults.ini` in the folder; its form is told in docs/storage.md. A write takes a
/// lock that holds between threads and processes, reads the file anew, changes its own entry and
/// puts a new file, synced to the disk, in the place of the old one. So no process loses what
/// another has written, and a crash at any instant leaves the old file or the new one. A write
/// waits as long as another process holds the lock.
///
/// What cannot be read counts as not given, what cannot be written is left as it was, and either is
/// one line in the log. Of a damaged file everything is read but the lines that cannot be
/// understood. Whoever meets the damage first, reading or writing, mends it: what was there is kept
/// as `defaults.damaged`, or with a number behind it where that is taken, those lines are left out
/// of the file, and one line in the log tells all this. To know before, ask `fault`.
///
/// Comments, and whatever else is in the file, stay as they are. A file that is a symbolic link is
/// written where the link leads.
///
/// The folder is made when it is first written to, for the user alone (mode 0700, the file 0600).
///
/// Threads: a plain value without state; everything may be called from any thread.
class PELLUVIA_EXPORT UserDefaults {
  public:
    /// The defaults of this process: the folder named like the application in `$XDG_CONFIG_HOME`,
    /// or, where that is not set to an absolute path, in `.config` of the user's home folder.
    [[nodiscard]] static UserDefaults standardUserDefaults();

    /// What `standardUserDefaults` takes for the application's name from now on; without it, the
    /// name of the program. False, and nothing changes, for a text that is not the name of a file
    /// (empty, ".", "..", with a slash or a NUL).
    static bool setApplicationIdentifier(std::string_view name);

    /// The defaults in a folder, which need not exist.
    explicit UserDefaults(std::string folder);

    /// Keeps the object under the key in the place of an earlier one. Returns the reason when it
    /// was not kept; who does not care need not look, for that is in the log, too.
    std::error_code setObject(const DefaultsObject &object, std::string_view key) const;
    /// Removes what is kept under the key, if anything is. The result is as of `setObject`.
    std::error_code removeObjectForKey(std::string_view key) const;

    /// What is wrong with the file as it stands there now, in one line of English: it cannot be
    /// read, or lines of it cannot be understood. Empty when nothing is wrong, and where there is
    /// no file. Mends and logs nothing.
    [[nodiscard]] std::string fault() const;

    /// What is kept under the key, or nothing.
    [[nodiscard]] std::optional<DefaultsObject> objectForKey(std::string_view key) const;
    /// The same as the type that is asked for; nothing where it is of another type.
    [[nodiscard]] std::optional<Data> dataForKey(std::string_view key) const;
    [[nodiscard]] std::optional<std::string> stringForKey(std::string_view key) const;
    [[nodiscard]] std::optional<std::int64_t> integerForKey(std::string_view key) const;
    [[nodiscard]] std::optional<double> doubleForKey(std::string_view key) const;

    /// The folder that holds the file.
    [[nodiscard]] const std::string &folder() const noexcept { return folder_; }

    /// The most bytes that the file may have. A write that would make it larger is not made; a file
    /// that is larger is renamed to `defaults.damaged` as a whole.
    static constexpr std::size_t largestFile = std::size_t{64} * 1024 * 1024;

  private:
    std::string folder_;
};

} // namespace pelluvia
