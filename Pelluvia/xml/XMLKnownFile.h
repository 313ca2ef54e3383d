// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Export.h>

#include <memory>

namespace pelluvia {

namespace xml {
struct KnownContent;
} // namespace xml

/// What a parse has found out about a document, for further parses of the same: they need not look
/// first who can read it, and fail if its bytes have changed in between. Nothing is known at first.
///
/// Threads: a plain value.
class PELLUVIA_EXPORT XMLKnownFile {
  public:
    XMLKnownFile() = default;

    /// Whether a parse has read the document to its end, and it is well-formed and in no way
    /// unusual.
    [[nodiscard]] bool isUsual() const noexcept;

    /// Not for hosts: what the parser passes to itself.
    explicit XMLKnownFile(std::shared_ptr<const xml::KnownContent> content) noexcept;
    [[nodiscard]] const std::shared_ptr<const xml::KnownContent> &content() const noexcept;

  private:
    std::shared_ptr<const xml::KnownContent> content_; ///< null: nothing
};

} // namespace pelluvia
