#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <sys/types.h>

namespace pelluvia::xml {

/// What tells whether a file is still as it was.
struct FileState {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;             ///< bytes
    std::int64_t modifiedSeconds = 0;  ///< since 1970, UTC
    std::int64_t modifiedFraction = 0; ///< nanoseconds
    [[nodiscard]] bool operator==(const FileState &) const = default;
};

/// Where the bytes of a document come from.
class Source {
  public:
    Source() = default;
    Source(const Source &) = delete;
    Source &operator=(const Source &) = delete;
    virtual ~Source() = default;

    /// Gets ready to be read. Returns 0 or an `errno` value.
    [[nodiscard]] virtual int open() { return 0; }
    /// Reads at most `size` bytes. Returns their number, 0 at the end, or a negated `errno` value.
    [[nodiscard]] virtual ssize_t read(char *to, std::size_t size) = 0;

    /// Another source of the same bytes, open and at their beginning, or null when they can be read
    /// only once. To be asked of an open source.
    [[nodiscard]] virtual std::unique_ptr<Source> again() const { return nullptr; }

    /// The present state of the regular file that the bytes are in, if there is one.
    [[nodiscard]] virtual std::optional<FileState> state() const { return std::nullopt; }

    /// The path of the document, or an empty one when it is not in a file.
    [[nodiscard]] virtual std::string path() const { return {}; }
    /// The open file, or -1.
    [[nodiscard]] virtual int descriptor() const noexcept { return -1; }
};

/// A file. Closed when the object goes.
class FileSource final : public Source {
  public:
    /// The file at a path, opened by `open`.
    explicit FileSource(std::string path) : path_(std::move(path)) {}
    /// A file that is open already; takes it over.
    explicit FileSource(int descriptor) : descriptor_(descriptor) {}
    ~FileSource() override;

    [[nodiscard]] int open() override;
    [[nodiscard]] ssize_t read(char *to, std::size_t size) override;
    [[nodiscard]] std::unique_ptr<Source> again() const override;
    [[nodiscard]] std::optional<FileState> state() const override;
    [[nodiscard]] std::string path() const override { return path_; }
    [[nodiscard]] int descriptor() const noexcept override { return descriptor_; }

  private:
    std::string path_;
    int descriptor_ = -1;
    /// Where to read next in a regular file, whose readers share no position; of anything else
    /// nothing is known.
    std::optional<off_t> position_;
};

} // namespace pelluvia::xml
