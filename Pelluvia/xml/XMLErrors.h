// SPDX-License-Identifier: MIT

#pragma once

#include <string_view>

/// \file
/// How the errors of an `XMLParser` are told apart.

namespace pelluvia {

/// The domain of the errors that the parser makes. Codes are those of the underlying XML library,
/// of which `xmlErrors` names some, and `NSXMLParserDelegateAbortedParseError`.
inline constexpr std::string_view NSXMLParserErrorDomain = "NSXMLParserErrorDomain";

/// The code of a parse that was stopped by `XMLParser::abortParsing`.
inline constexpr int NSXMLParserDelegateAbortedParseError = 512;

/// Keys of a parser error's user information, which also has `NSLocalizedDescriptionKey`: where it
/// was found, both counted from 1 (integers). Both are 0 when the source could not be opened.
inline constexpr std::string_view NSXMLParserErrorLineNumber = "NSXMLParserErrorLineNumber";
inline constexpr std::string_view NSXMLParserErrorColumn = "NSXMLParserErrorColumn";

/// Codes that a host may want to know.
namespace xmlErrors {
/// A limit was reached, see XMLLimits.h; the message says which.
inline constexpr int limit = 1;
/// There is nothing in the document, or something else than XML.
inline constexpr int emptyDocument = 4;
/// A byte or character that XML does not allow.
inline constexpr int wrongCharacter = 9;
/// An encoding that the system does not know.
inline constexpr int unknownEncoding = 32;
/// An end tag that does not belong to the element that is open.
inline constexpr int mismatchedTags = 76;
/// The document ends within an element.
inline constexpr int endsEarly = 77;
/// A declared encoding that the bytes contradict.
inline constexpr int contradictedEncoding = 81;
/// Entities that refer to themselves, or add too much to the document.
inline constexpr int entities = 89;
/// The source cannot be opened or read, or has changed since it was first read.
inline constexpr int unreadable = 1549;
/// Bytes that are no text in the encoding of the document.
inline constexpr int notInEncoding = 6003;
} // namespace xmlErrors

} // namespace pelluvia
