/* Limits on the shape of documents, checked in linear time before a parser sees them.
 *
 * The parsers recurse once per level: deep nesting overflows the stack of the 256 KiB threads. One element with
 * very many attributes keeps the XML parser busy for a time that grows with their square, and both parsers pay
 * for each value or element: a document of nothing else is slow for its size. Devices nest less than ten
 * levels, write a handful of attributes, and some thousand values at most. */
#ifndef VELTA_GATEWAY_INPUTGUARD_H
#define VELTA_GATEWAY_INPUTGUARD_H

#include <cstddef>
#include <string_view>

namespace velta {

constexpr int kMaxJsonNesting = 128;
constexpr size_t kMaxJsonValues = 50'000;
constexpr int kMaxXmlNesting = 128;
constexpr int kMaxXmlElements = 50'000;
constexpr int kMaxXmlAttributes = 64; /* of one element */

/* Whether the JSON value at the start of text stays within kMaxJsonNesting and kMaxJsonValues. */
bool isJsonShapeAllowed(std::string_view text);

/* Whether the XML document stays within its limits. */
bool isXmlShapeAllowed(std::string_view text);

}  // namespace velta

#endif
