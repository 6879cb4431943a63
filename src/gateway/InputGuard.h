/* Limits on the shape of documents, checked in linear time before a parser sees them.
 *
 * The parsers recurse once per level: deep nesting overflows the stack of the 256 KiB threads, and one
 * element with very many attributes keeps the XML parser busy for a time that grows with their square.
 * Devices nest less than ten levels and write a handful of attributes. */
#ifndef VELTA_GATEWAY_INPUTGUARD_H
#define VELTA_GATEWAY_INPUTGUARD_H

#include <string_view>

namespace velta {

constexpr int kMaxJsonNesting = 128;
constexpr int kMaxXmlNesting = 128;
constexpr int kMaxXmlAttributes = 256; /* of one element */

/* Whether the JSON value at the start of text stays within kMaxJsonNesting. */
bool isJsonNestingAllowed(std::string_view text);

/* Whether the XML document stays within kMaxXmlNesting and kMaxXmlAttributes. */
bool isXmlShapeAllowed(std::string_view text);

}  // namespace velta

#endif
