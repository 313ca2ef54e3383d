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

    /// The entries; none where there is no file. `problem` says what was wrong, if anything.
    [[nodiscard]] DefaultsText read(std::string &problem) const;
    /// Changes the entries. When that fails, the file is as it was and `problem` says why;
    /// it also tells of damage that was moved aside.
    void update(const std::function<void(DefaultsText &)> &change, std::string &problem) const;

  private:
    /// What a look at the file gave. Without entries it is damaged or, with an error number,
    /// cannot be read.
    struct Look {
        std::optional<DefaultsText> entries;
        int error = 0;
    };

    [[nodiscard]] Look look() const;
    /// Takes the lock; an error number when it cannot be had.
    [[nodiscard]] int lock(FileLock &held) const;
    /// Entries to begin anew with; `problem` tells it. Nothing when the file is still in the way.
    [[nodiscard]] std::optional<DefaultsText> moveAside(std::string &problem) const;
    /// An error number, 0 when the file was replaced.
    [[nodiscard]] int replace(const std::string &content) const;

    std::string folder_;
    std::string path_;
};

} // namespace pelluvia::storage
