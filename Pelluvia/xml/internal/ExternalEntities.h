// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/internal/EntityFolder.h>
#include <Pelluvia/xml/internal/Source.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace pelluvia::xml {

/// The text of an external entity, ready to stand for its reference.
struct EntityText {
    std::string text; ///< UTF-8, without text declaration
    std::string path; ///< of the file
};

/// Logs that an external entity stands for no text, and why.
void logUnread(std::string_view systemIdentifier, std::string_view reason);

/// Reads the external entities of one document. What must not or cannot be read is logged, one line
/// for each attempt.
class ExternalEntities {
  public:
    /// `document` must outlive the object.
    explicit ExternalEntities(const Source &document) : document_(document) {}

    /// The text of the entity with this system identifier, which was declared in the file at
    /// `declaringPath` (empty: in the document). Nothing when it must stand for no text.
    [[nodiscard]] std::optional<EntityText> load(std::string_view systemIdentifier,
                                                 const std::string &declaringPath);

  private:
    [[nodiscard]] EntityFile open(std::string_view systemIdentifier,
                                  const std::string &declaringPath);

    const Source &document_;
    std::optional<EntityFolder> folder_;
    bool soughtFolder_ = false;
    std::size_t loadedSize_ = 0; ///< of all entities together
};

} // namespace pelluvia::xml
