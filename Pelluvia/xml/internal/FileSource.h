// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/internal/Source.h>

#include <string>
#include <utility>

namespace pelluvia::xml {

/// Whether a descriptor is closed by who has got it.
enum class Ownership { borrowed, owned };

/// What can be read from a file descriptor. A regular file is read from where the descriptor stands
/// without moving it: so several sources of one descriptor do not disturb each other.
class FileSource final : public Source {
  public:
    /// The file at a path, opened by `open` and closed when the object goes.
    explicit FileSource(std::string path) : path_(std::move(path)) {}
    /// What is open already.
    FileSource(int descriptor, Ownership ownership);
    ~FileSource() override;

    [[nodiscard]] std::string open() override;
    [[nodiscard]] std::unique_ptr<Source> again() const override;
    [[nodiscard]] std::optional<std::uint64_t> size() const override;
    [[nodiscard]] std::optional<SourceState> state() const override;
    [[nodiscard]] std::string path() const override { return path_; }
    [[nodiscard]] int descriptor() const noexcept override { return descriptor_; }

  protected:
    [[nodiscard]] ssize_t readSome(char *to, std::size_t size) override;

  private:
    void inspect();

    std::string path_; ///< empty where only a descriptor was given
    int descriptor_ = -1;
    Ownership ownership_ = Ownership::owned;
    std::string failure_; ///< why nothing can be read

    // Of a regular file; of anything else nothing is known.
    std::optional<off_t> position_; ///< where to read next
    off_t begin_ = 0;               ///< where the document begins
    off_t size_ = 0;                ///< of the file when it was opened
};

} // namespace pelluvia::xml
