// SPDX-License-Identifier: MIT

#pragma once

#include <tools/pelluvia/files/AccessRights.h>
#include <tools/pelluvia/files/Descriptor.h>
#include <tools/pelluvia/files/SignalCleanup.h>

#include <memory>
#include <optional>
#include <string>
#include <system_error>

namespace pelluvia::host {

/// A file that is being made, and is gone at the end of this object unless it was given a name. It
/// is written through its descriptor and never opened by a name.
///
/// Threads: none.
class TemporaryFile {
  public:
    /// A new empty file in the folder of `path`, with the rights of another or, where that is null,
    /// those of a new file. It has no name, so that nothing is left of it however the process ends.
    /// Where the system has no such files it has a name as `makeHidden` gives it. Null when it
    /// cannot be made; `error` then says why.
    [[nodiscard]] static std::unique_ptr<TemporaryFile>
    makeBeside(const std::string &path, const AccessRights *rights, std::error_code &error);

    /// Likewise under a name made of that of `path`, with a dot before it. It is removed, too, when
    /// a signal ends the process that can be handled.
    [[nodiscard]] static std::unique_ptr<TemporaryFile>
    makeHidden(const std::string &path, const AccessRights *rights, std::error_code &error);

    /// Likewise under this very name, if that is free. It stays when the process is killed: for
    /// what cannot be had a second time.
    [[nodiscard]] static std::unique_ptr<TemporaryFile>
    makeVisible(const std::string &name, const AccessRights *rights, std::error_code &error);

    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;
    ~TemporaryFile();

    /// To be written to; it stays this object's.
    [[nodiscard]] int descriptor() const noexcept { return descriptor_.number(); }
    /// The name that it has for the time being; empty for none.
    [[nodiscard]] const std::string &name() const noexcept { return name_; }

    /// Gives the file a name for good, if nothing else has it (`std::errc::file_exists`).
    [[nodiscard]] std::error_code take(const std::string &name);
    /// Gives the file a name for good, in place of another file that may have it.
    [[nodiscard]] std::error_code replace(const std::string &name);
    /// Leaves the file the name that it has.
    void stay() noexcept;

  private:
    TemporaryFile(std::string name, Descriptor descriptor) noexcept;
    [[nodiscard]] std::error_code linkAs(const std::string &name) const;

    std::string name_;
    Descriptor descriptor_;
    std::optional<RemovalOnSignal> removal_;
};

} // namespace pelluvia::host
