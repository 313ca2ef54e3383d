// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/XMLParser.h>
#include <Pelluvia/xml/internal/Source.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <tests/support/RecordingXMLDelegate.h>
#include <utility>

namespace pelluvia::testing {

/// A document in memory. A read gives at most `step` bytes; behind the document stands `failure`,
/// an `errno` value, if that is not 0.
class TextSource final : public xml::Source {
  public:
    explicit TextSource(std::string text,
                        std::size_t step = std::numeric_limits<std::size_t>::max(), int failure = 0)
        : text_(std::move(text)), step_(step), failure_(failure) {}

    [[nodiscard]] std::unique_ptr<xml::Source> again() const override {
        return std::make_unique<TextSource>(text_, step_, failure_);
    }

  protected:
    [[nodiscard]] ssize_t readSome(char *to, std::size_t size) override {
        const std::size_t count = std::min({size, step_, text_.size() - position_});
        std::memcpy(to, text_.data() + position_, count);
        position_ += count;
        return count == 0 && failure_ != 0 ? -failure_ : static_cast<ssize_t>(count);
    }

  private:
    std::string text_;
    std::size_t position_ = 0;
    std::size_t step_;
    int failure_;
};

/// `head`, then `pattern` again and again for `size` bytes, then `tail`; takes no memory for it.
class RepeatingSource final : public xml::Source {
  public:
    RepeatingSource(std::string head, std::string pattern, std::size_t size, std::string tail)
        : head_(std::move(head)),
          pattern_(std::move(pattern)),
          tail_(std::move(tail)),
          size_(size) {}

    /// Bytes that were read.
    [[nodiscard]] std::size_t position() const noexcept { return position_; }

  protected:
    [[nodiscard]] ssize_t readSome(char *to, std::size_t size) override {
        std::size_t count = 0;
        while (count < size) {
            const std::string_view piece = next().substr(0, size - count);
            if (piece.empty()) {
                break;
            }
            std::memcpy(to + count, piece.data(), piece.size());
            count += piece.size();
            position_ += piece.size();
        }
        return static_cast<ssize_t>(count);
    }

  private:
    /// What follows at the position, in part.
    [[nodiscard]] std::string_view next() const {
        if (position_ < head_.size()) {
            return std::string_view(head_).substr(position_);
        }
        const std::size_t at = position_ - head_.size();
        if (at < size_) {
            return std::string_view(pattern_).substr(at % pattern_.size(), size_ - at);
        }
        return std::string_view(tail_).substr(at - size_);
    }

    std::string head_;
    std::string pattern_;
    std::string tail_;
    std::size_t size_;
    std::size_t position_ = 0;
};

/// A parser of a text.
inline std::unique_ptr<XMLParser>
parserOf(std::string text, std::size_t step = std::numeric_limits<std::size_t>::max()) {
    return std::make_unique<XMLParser>(std::make_unique<TextSource>(std::move(text), step));
}

/// The events of a text, as `RecordingXMLDelegate` notes them.
inline std::string eventsOf(std::string text,
                            std::size_t step = std::numeric_limits<std::size_t>::max()) {
    RecordingXMLDelegate delegate;
    const auto parser = parserOf(std::move(text), step);
    parser->setDelegate(&delegate);
    parser->parse();
    return delegate.text();
}

} // namespace pelluvia::testing
