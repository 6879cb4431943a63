#ifndef VELTA_GATEWAY_CXMLBASE_H
#define VELTA_GATEWAY_CXMLBASE_H

#include <tinyxml.h>

#include <string>

/* An XML document with a cursor on one of its elements. Navigation moves the cursor, reading and editing act
 * on it or on its children. Nothing throws; failure is a false or empty result. A new object has no cursor.
 * One thread at a time. */
class CXmlBase {
 public:
    CXmlBase() = default;
    virtual ~CXmlBase() = default;
    CXmlBase(const CXmlBase&) = delete;
    CXmlBase& operator=(const CXmlBase&) = delete;

    // Loading and saving. The cursor stays where it was: both are meant for a fresh object.

    /* Reads a document; text on success, else null. Refuses what velta::isXmlShapeAllowed refuses. */
    const char* Parse(const char* text);
    bool LoadFile(const char* path);
    bool WriteToFile(const char* path) const;
    /* Prints the document (four blanks, "\n") to a buffer, without a terminating zero. False, with the buffer
     * and length untouched, when it has more than size bytes. */
    bool WriteToBuf(char* buffer, unsigned long size, int& length) const;
    std::string WriteToBuf() const;

    // Moving the cursor. Failure leaves it where it was, unless stated.

    bool SetRoot();
    /* Appends an element to the document; the cursor goes to the document's first element, which may be an
     * older one. */
    TiXmlElement* CreateRoot(const std::string& name);
    /* Searches from the cursor's element (from the root without cursor) forward among its siblings. */
    bool FindElem(const char* name);
    /* Searches all siblings of the cursor's element. */
    bool FindElemNoOrder(const char* name);
    bool IntoElem();
    /* At the root it fails and leaves no cursor. */
    bool OutOfElem();
    bool NextSibElem();
    /* To the previous sibling if that is an element; false only when there is no previous sibling at all. A
     * sibling of another kind leaves no cursor. */
    bool PreSibElem();

    // Reading

    std::string GetData() const;
    std::string GetNodeName() const;
    /* The printout of the cursor's element, itself included. */
    std::string GetChildren() const;
    /* As above, to a buffer that is zeroed first. Mind the sense of the result: true when it does not fit,
     * false when it was copied and also, with nothing written, when there is no cursor. */
    bool GetChildren(char* buffer, unsigned long size, unsigned long& length) const;
    std::string GetFirstAttributeValue();
    std::string GetAttributeValue(const std::string& name) const;

    // Editing

    /* FindElem, then replaces the text of the element found. False when it is not found or has no text. */
    bool ModifyData(const std::string& name, const char* value);
    /* Appends a child and moves the cursor to it. */
    bool AddNode(const std::string& name, const std::string& value);
    bool AddNode(const std::string& name);
    /* Appends a copy of the other cursor's element and moves the cursor to it. */
    bool AddNode(const CXmlBase& other);
    bool SetAttribute(const char* name, const char* value);
    /* Removes the cursor's element; the cursor goes to its parent, or nowhere at the top. */
    bool RemoveNode();
    bool RemoveNode(const std::string& name, const std::string& value);
    bool RemoveNode(const std::string& name);
    /* Removes the child element at a position counted from 1. True whenever there is a cursor. */
    bool RemoveNode(unsigned long index);
    /* Removes the previous sibling, of whatever kind. */
    bool RemovePreSibElem();
    bool RemoveNextSilElem();

 private:
    bool moveTo(TiXmlElement* element);
    bool appendChild(const TiXmlElement& child);
    bool removeChild(TiXmlElement* child);

    TiXmlDocument document_;
    TiXmlElement* cursor_ = nullptr;
};

#endif
