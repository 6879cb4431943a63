/* Network settings between host and device: a JSON object and an XML document that mirror each other.
 *
 * The root element is the object's only member; child elements are members, repeated ones an array; texts are
 * strings. Attributes have no place in the JSON. */
#ifndef VELTA_TRANSLATE_SYSTEM_NETWORKINTERFACES_H
#define VELTA_TRANSLATE_SYSTEM_NETWORKINTERFACES_H

#include <json/value.h>

#include <string>

namespace velta {

/* The interfaces of a "NetworkInterfaceList" are an array however many there are. False, with answer
 * untouched, when the document is none of that root, or its root has no elements. */
bool transNetworkXml2Json(std::string& answer, const std::string& deviceXml, const char* root);

/* Takes strings, integers and booleans in up to 16 levels of elements. False, with xml untouched, when body is
 * anything but an object with the one member root, or holds what no document says: null, a fraction, an empty
 * object or array, an array in an array, a member name that is no element name, a control character. */
bool transNetworkJson2Xml(std::string& xml, const Json::Value& body, const char* root);

}  // namespace velta

#endif
