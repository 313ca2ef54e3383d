// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/internal/Failure.h>

#include <cstdint>

namespace pelluvia::xml {

/// How much of a document a delegate was told.
struct Reported {
    /// Starts of elements and, unless the delegate wants names only, ends; also those that it is
    /// not interested in.
    std::uint64_t tags = 0;
    /// Bytes of text since the last of them, of an element that it wants all of.
    std::uint64_t text = 0;
};

/// What reads a document and reports it: the scanner or the XML library.
class Engine {
  public:
    Engine() = default;
    Engine(const Engine &) = delete;
    Engine &operator=(const Engine &) = delete;
    virtual ~Engine() = default;

    /// Ends the parse, from within an event; harmless when it has ended.
    virtual void abort() = 0;
    /// Where the parse stands in the document, or ended.
    [[nodiscard]] virtual Position position() = 0;
};

} // namespace pelluvia::xml
