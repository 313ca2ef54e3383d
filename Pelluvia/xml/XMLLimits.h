// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

/// Limits on what a document may ask for. Exceeding one is a parse error. Together they see to it
/// that the work for a document grows no faster than its size, and memory not at all.
namespace pelluvia::xmlLimits {

/// Elements inside elements.
inline constexpr std::size_t depth = 256;
/// Bytes of the text between two tags, or of one attribute value.
inline constexpr std::size_t textSize = 10'000'000;
/// References to entities, and defaults of attributes, may add to a document: this many bytes, and
/// beyond them this factor of what was read.
inline constexpr std::size_t amplificationAllowance = 1'000'000;
inline constexpr std::size_t amplificationFactor = 5;
/// Bytes of all external entities of a document together. What would exceed it is not read.
inline constexpr std::size_t externalEntitySize = 1'000'000;
/// Bytes of the document type declaration, with its external parts.
inline constexpr std::size_t declarationsSize = 256'000;
/// Attributes of an element, and namespace declarations in force.
inline constexpr int attributes = 500;
/// Different names, prefixes and namespace URIs of a document that the XML library reads, which
/// keeps them all; looked at from time to time.
inline constexpr std::size_t names = 100'000;
/// Bytes of memory that it has taken for them when it needs more; it takes large blocks.
inline constexpr std::size_t nameMemory = 10'000'000;

} // namespace pelluvia::xmlLimits
