// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/internal/ContentDigest.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <sys/types.h>

namespace pelluvia::xml {

/// What tells whether the bytes of a source can still be the same.
struct SourceState {
    std::uint64_t device = 0;          ///< 0 for bytes in memory
    std::uint64_t inode = 0;           ///< or the address in memory
    std::int64_t begin = 0;            ///< where in the file the document begins
    std::int64_t size = 0;             ///< bytes, of the whole file
    std::int64_t modifiedSeconds = 0;  ///< since 1970, UTC
    std::int64_t modifiedFraction = 0; ///< nanoseconds
    [[nodiscard]] bool operator==(const SourceState &) const = default;
};

/// Where the bytes of a document come from.
class Source {
  public:
    Source() = default;
    Source(const Source &) = delete;
    Source &operator=(const Source &) = delete;
    virtual ~Source() = default;

    /// Gets ready to be read. Returns why it cannot, or an empty text.
    [[nodiscard]] virtual std::string open() { return {}; }

    /// Reads at most `size` bytes. Returns their number, 0 at the end, or a negated `errno` value.
    [[nodiscard]] ssize_t read(char *to, std::size_t size) {
        const ssize_t count = readSome(to, size);
        if (count > 0) {
            bytesRead_ += static_cast<std::uint64_t>(count);
            if (digest_) {
                digest_->add({to, static_cast<std::size_t>(count)});
            }
        }
        return count;
    }
    /// How many bytes `read` has given.
    [[nodiscard]] std::uint64_t bytesRead() const noexcept { return bytesRead_; }

    /// From now on, `digest` tells of all bytes that `read` gives.
    void keepDigest() { digest_.emplace(); }
    [[nodiscard]] const std::optional<ContentDigest> &digest() const noexcept { return digest_; }

    /// Another source of the same bytes, open and at their beginning, or null when they can be read
    /// only once. To be asked of an open source.
    [[nodiscard]] virtual std::unique_ptr<Source> again() const { return nullptr; }

    /// How many bytes there were when the source was opened; nothing when they can be read only
    /// once, and when it is not open yet.
    [[nodiscard]] virtual std::optional<std::uint64_t> size() const { return std::nullopt; }

    /// The present state of the bytes, if they can be read more than once.
    [[nodiscard]] virtual std::optional<SourceState> state() const { return std::nullopt; }

    /// The path of the document, or an empty one when it was not opened by one.
    [[nodiscard]] virtual std::string path() const { return {}; }
    /// The open file, or -1.
    [[nodiscard]] virtual int descriptor() const noexcept { return -1; }

  protected:
    /// Does the work of `read`.
    [[nodiscard]] virtual ssize_t readSome(char *to, std::size_t size) = 0;

  private:
    std::uint64_t bytesRead_ = 0;
    std::optional<ContentDigest> digest_;
};

} // namespace pelluvia::xml
