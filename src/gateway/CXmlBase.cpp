#include "gateway/CXmlBase.h"

#include <cstring>

#include "gateway/InputGuard.h"

namespace {

std::string orEmpty(const char* text) {
    return text != nullptr ? text : "";
}

std::string print(const TiXmlNode& node) {
    TiXmlPrinter printer;
    node.Accept(&printer);
    return printer.Str();
}

TiXmlElement* firstNamed(TiXmlElement* element, const char* name) {
    while (element != nullptr && element->ValueStr() != name)
        element = element->NextSiblingElement();
    return element;
}

}  // namespace

const char* CXmlBase::Parse(const char* text) {
    document_.Clear();
    if (text == nullptr || !velta::isXmlShapeAllowed(text)) return nullptr;
    // A character that is cut off at the end of the text makes the parser step over that end, by up to the
    // length of a character.
    std::string padded(text);
    padded.append(4, '\0');
    document_.Parse(padded.c_str());  // whose own result is null at the end of the text, too
    return document_.Error() ? nullptr : text;
}

bool CXmlBase::LoadFile(const char* path) {
    document_.Clear();
    return path != nullptr && document_.LoadFile(path);
}

bool CXmlBase::WriteToFile(const char* path) const {
    return path != nullptr && document_.SaveFile(path);
}

bool CXmlBase::WriteToBuf(char* buffer, unsigned long size, int& length) const {
    const std::string text = print(document_);
    if (buffer == nullptr || text.size() > size) return false;
    text.copy(buffer, text.size());
    length = static_cast<int>(text.size());
    return true;
}

std::string CXmlBase::WriteToBuf() const {
    return print(document_);
}

bool CXmlBase::moveTo(TiXmlElement* element) {
    if (element == nullptr) return false;
    cursor_ = element;
    return true;
}

bool CXmlBase::SetRoot() {
    cursor_ = document_.RootElement();
    return cursor_ != nullptr;
}

TiXmlElement* CXmlBase::CreateRoot(const std::string& name) {
    document_.InsertEndChild(TiXmlElement(name));
    cursor_ = document_.RootElement();
    return cursor_;
}

bool CXmlBase::FindElem(const char* name) {
    if (name == nullptr) return false;
    return moveTo(firstNamed(cursor_ != nullptr ? cursor_ : document_.RootElement(), name));
}

bool CXmlBase::FindElemNoOrder(const char* name) {
    if (name == nullptr) return false;
    TiXmlNode* const level = cursor_ != nullptr ? cursor_->Parent() : &document_;
    return moveTo(firstNamed(level->FirstChildElement(), name));
}

bool CXmlBase::IntoElem() {
    return cursor_ != nullptr && moveTo(cursor_->FirstChildElement());
}

bool CXmlBase::OutOfElem() {
    if (cursor_ == nullptr) return false;
    cursor_ = cursor_->Parent()->ToElement();
    return cursor_ != nullptr;
}

bool CXmlBase::NextSibElem() {
    return cursor_ != nullptr && moveTo(cursor_->NextSiblingElement());
}

bool CXmlBase::PreSibElem() {
    TiXmlNode* const previous = cursor_ != nullptr ? cursor_->PreviousSibling() : nullptr;
    if (previous == nullptr) return false;
    cursor_ = previous->ToElement();
    return true;
}

std::string CXmlBase::GetData() const {
    return cursor_ != nullptr ? orEmpty(cursor_->GetText()) : "";
}

std::string CXmlBase::GetNodeName() const {
    return cursor_ != nullptr ? cursor_->ValueStr() : "";
}

std::string CXmlBase::GetChildren() const {
    return cursor_ != nullptr ? print(*cursor_) : "";
}

bool CXmlBase::GetChildren(char* buffer, unsigned long size, unsigned long& length) const {
    if (cursor_ == nullptr) return false;
    const std::string text = print(*cursor_);
    if (buffer == nullptr || text.size() > size) return true;
    std::memset(buffer, 0, size);
    text.copy(buffer, text.size());
    length = text.size();
    return false;
}

std::string CXmlBase::GetFirstAttributeValue() {
    const TiXmlAttribute* const attribute = cursor_ != nullptr ? cursor_->FirstAttribute() : nullptr;
    return attribute != nullptr ? attribute->ValueStr() : "";
}

std::string CXmlBase::GetAttributeValue(const std::string& name) const {
    return cursor_ != nullptr ? orEmpty(cursor_->Attribute(name.c_str())) : "";
}

bool CXmlBase::ModifyData(const std::string& name, const char* value) {
    if (value == nullptr || !FindElem(name.c_str()) || cursor_->FirstChild() == nullptr) return false;
    cursor_->FirstChild()->SetValue(value);
    return true;
}

bool CXmlBase::appendChild(const TiXmlElement& child) {
    if (cursor_ == nullptr) return false;
    TiXmlNode* const added = cursor_->InsertEndChild(child);
    return added != nullptr && moveTo(added->ToElement());
}

bool CXmlBase::AddNode(const std::string& name, const std::string& value) {
    TiXmlElement element(name);
    element.InsertEndChild(TiXmlText(value));
    return appendChild(element);
}

bool CXmlBase::AddNode(const std::string& name) {
    return appendChild(TiXmlElement(name));
}

bool CXmlBase::AddNode(const CXmlBase& other) {
    return other.cursor_ != nullptr && appendChild(*other.cursor_);
}

bool CXmlBase::SetAttribute(const char* name, const char* value) {
    if (cursor_ == nullptr || name == nullptr || value == nullptr) return false;
    cursor_->SetAttribute(name, value);
    return true;
}

bool CXmlBase::RemoveNode() {
    if (cursor_ == nullptr) return false;
    TiXmlNode* const parent = cursor_->Parent();
    parent->RemoveChild(cursor_);
    cursor_ = parent->ToElement();
    return true;
}

bool CXmlBase::removeChild(TiXmlElement* child) {
    return child != nullptr && cursor_->RemoveChild(child);
}

bool CXmlBase::RemoveNode(const std::string& name, const std::string& value) {
    if (cursor_ == nullptr) return false;
    TiXmlElement* child = firstNamed(cursor_->FirstChildElement(), name.c_str());
    while (child != nullptr && orEmpty(child->GetText()) != value) {
        child = firstNamed(child->NextSiblingElement(), name.c_str());
    }
    return removeChild(child);
}

bool CXmlBase::RemoveNode(const std::string& name) {
    return cursor_ != nullptr && removeChild(firstNamed(cursor_->FirstChildElement(), name.c_str()));
}

bool CXmlBase::RemoveNode(unsigned long index) {
    if (cursor_ == nullptr) return false;
    TiXmlElement* child = index > 0 ? cursor_->FirstChildElement() : nullptr;
    for (unsigned long position = 1; child != nullptr && position < index; ++position) {
        child = child->NextSiblingElement();
    }
    removeChild(child);
    return true;
}

bool CXmlBase::RemovePreSibElem() {
    TiXmlNode* const previous = cursor_ != nullptr ? cursor_->PreviousSibling() : nullptr;
    return previous != nullptr && cursor_->Parent()->RemoveChild(previous);
}

bool CXmlBase::RemoveNextSilElem() {
    TiXmlElement* const next = cursor_ != nullptr ? cursor_->NextSiblingElement() : nullptr;
    return next != nullptr && cursor_->Parent()->RemoveChild(next);
}
