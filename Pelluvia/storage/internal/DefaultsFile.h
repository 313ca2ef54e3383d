// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/storage/internal/DefaultsText.h>
#include <Pelluvia/storage/internal/FileLock.h>

#include <functional>
#include <string>

namespace pelluvia::storage {

/// The defaults file of a folder: read whole, changed under a lock, replaced atomically. See
/// `UserDefaults` for the rules.
///
/// Threads: any; what two objects of one folder do is kept apart by the lock.
class DefaultsFile {
  public:
    explicit DefaultsFile(std::string folder);

    /// What is wrong with the file, in one line; empty when nothing is. Changes nothing.
    [[nodiscard]] std::string fault() const;
    /// The entries; none where there is no file. A damaged file is mended. `problem` says what was
    /// wrong, if anything.
    [[nodiscard]] DefaultsText read(std::string &problem) const;
    /// Changes the entries. Returns an error number; unless it is 0, the file is as it was and
    /// `problem` says why. `problem` also tells of damage that was mended.
    [[nodiscard]] int update(const std::function<void(DefaultsText &)> &change,
                             std::string &problem) const;

  private:
    /// What a look at the file gave.
    struct Look {
        int error = 0;            ///< why it cannot be read
        bool isNoText = false;    ///< it is not a regular file, or too large
        std::string content = {}; ///< as it stands there
        DefaultsText entries = {};

        [[nodiscard]] bool isDamaged() const noexcept {
            return isNoText || entries.badLineCount() > 0;
        }
    };

    [[nodiscard]] Look look() const;
    /// Takes the lock; an error number when it cannot be had.
    [[nodiscard]] int lock(FileLock &held) const;
    /// What is wrong with what was found.
    [[nodiscard]] std::string faultOf(const Look &found) const;
    /// Writes changed entries, and before that keeps aside what was damaged. An error number.
    [[nodiscard]] int rewrite(Look &found, const std::function<void(DefaultsText &)> &change,
                              std::string &problem) const;
    /// A path beside the file that nothing bears yet, for what is damaged.
    [[nodiscard]] std::string freeName() const;
    /// Keeps what was found under such a path. An error number.
    [[nodiscard]] int keepAside(const Look &found, const std::string &name) const;
    /// An error number, 0 when the file was replaced.
    [[nodiscard]] int replace(const std::string &content) const;

    std::string folder_;
    std::string path_;
};

} // namespace pelluvia::storage
