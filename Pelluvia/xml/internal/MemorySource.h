// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/internal/Source.h>

#include <string_view>

namespace pelluvia::xml {

/// Bytes that somebody else keeps in memory.
class MemorySource final : public Source {
  public:
    explicit MemorySource(std::string_view bytes) noexcept : bytes_(bytes) {}

    [[nodiscard]] std::unique_ptr<Source> again() const override;
    [[nodiscard]] std::optional<std::uint64_t> size() const override { return bytes_.size(); }
    [[nodiscard]] std::optional<SourceState> state() const override;

  protected:
    [[nodiscard]] ssize_t readSome(char *to, std::size_t size) override;

  private:
    const std::string_view bytes_;
};

} // namespace pelluvia::xml
