#include <gtest/gtest.h>

#include <cstdio>

#include "gateway/CXmlBase.h"

namespace {

class XmlTest : public testing::Test {
 protected:
    CXmlBase xml;

    void parse(const char* text) { ASSERT_NE(xml.Parse(text), nullptr); }
};

TEST_F(XmlTest, findsForwardOnlyUnlessAskedOtherwise) {
    parse("<a><b>1</b><c x='7' y='8'>2</c></a>");
    EXPECT_TRUE(xml.FindElem("a"));
    EXPECT_TRUE(xml.IntoElem());
    EXPECT_EQ(xml.GetNodeName(), "b");
    EXPECT_TRUE(xml.FindElem("c"));
    EXPECT_FALSE(xml.FindElem("b"));
    EXPECT_EQ(xml.GetData(), "2");
    EXPECT_EQ(xml.GetFirstAttributeValue(), "7");
    EXPECT_EQ(xml.GetAttributeValue("y"), "8");
    EXPECT_EQ(xml.GetAttributeValue("z"), "");
    EXPECT_TRUE(xml.FindElemNoOrder("b"));
    EXPECT_FALSE(xml.FindElemNoOrder("d"));
    EXPECT_EQ(xml.GetNodeName(), "b");
}

TEST_F(XmlTest, movesItsCursor) {
    parse("<a><b/>text<c/></a>");
    EXPECT_FALSE(xml.IntoElem());  // no cursor yet
    ASSERT_TRUE(xml.SetRoot());
    ASSERT_TRUE(xml.IntoElem());
    EXPECT_FALSE(xml.IntoElem());
    EXPECT_FALSE(xml.PreSibElem());
    EXPECT_TRUE(xml.NextSibElem());
    EXPECT_EQ(xml.GetNodeName(), "c");
    EXPECT_FALSE(xml.NextSibElem());
    EXPECT_TRUE(xml.OutOfElem());
    EXPECT_FALSE(xml.OutOfElem());
    EXPECT_EQ(xml.GetNodeName(), "");
    EXPECT_TRUE(xml.FindElem("a"));  // starts at the root again
    ASSERT_TRUE(xml.IntoElem() && xml.NextSibElem());
    EXPECT_TRUE(xml.PreSibElem());  // onto a text, which is no element
    EXPECT_EQ(xml.GetNodeName(), "");
}

TEST_F(XmlTest, withoutADocumentNothingSucceeds) {
    EXPECT_FALSE(xml.SetRoot() || xml.FindElem("a") || xml.FindElemNoOrder("a") || xml.OutOfElem() ||
                 xml.NextSibElem());
    EXPECT_FALSE(xml.AddNode("a") || xml.RemoveNode() || xml.RemoveNode("a") || xml.RemoveNode("a", "b") ||
                 xml.RemoveNode(1));
    EXPECT_FALSE(xml.SetAttribute("a", "b") || xml.RemovePreSibElem() || xml.RemoveNextSilElem() ||
                 xml.ModifyData("a", "b"));
    EXPECT_EQ(xml.GetData() + xml.GetChildren() + xml.WriteToBuf(), "");
    EXPECT_EQ(xml.Parse("<a"), nullptr);
}

TEST_F(XmlTest, writesToBuffersWithTheirOddRules) {
    parse("<a><b>1</b></a>");
    const std::string text = xml.WriteToBuf();
    EXPECT_EQ(text, "<a>\n    <b>1</b>\n</a>\n");
    std::string buffer(text.size(), '.');
    int length = -1;
    EXPECT_FALSE(xml.WriteToBuf(buffer.data(), buffer.size() - 1, length));
    EXPECT_EQ(length, -1);
    EXPECT_TRUE(xml.WriteToBuf(buffer.data(), buffer.size(), length));
    EXPECT_EQ(buffer, text);

    ASSERT_TRUE(xml.SetRoot() && xml.IntoElem());
    unsigned long size = 0;
    std::string child(xml.GetChildren().size() + 4, '.');
    EXPECT_TRUE(xml.GetChildren(child.data(), 3, size));
    EXPECT_FALSE(xml.GetChildren(child.data(), child.size(), size));  // false: it fitted
    EXPECT_EQ(child.substr(0, size), xml.GetChildren());
    EXPECT_EQ(child.back(), '\0');
}

TEST_F(XmlTest, edits) {
    EXPECT_NE(xml.CreateRoot("root"), nullptr);
    EXPECT_TRUE(xml.SetAttribute("version", "2.0"));
    EXPECT_TRUE(xml.AddNode("list"));
    for (const char* value : {"1", "2", "<3>"}) {
        EXPECT_TRUE(xml.AddNode("item", value));
        EXPECT_TRUE(xml.OutOfElem());
    }
    EXPECT_TRUE(xml.RemoveNode("item", "2"));
    EXPECT_FALSE(xml.RemoveNode("item", "2"));
    EXPECT_FALSE(xml.RemoveNode("other"));
    EXPECT_TRUE(xml.RemoveNode(9UL));  // nothing there, and still true
    EXPECT_EQ(xml.WriteToBuf(),
              "<root version=\"2.0\">\n    <list>\n        <item>1</item>\n        <item>&lt;3&gt;</item>\n  "
              "  </list>\n</root>\n");
    EXPECT_TRUE(xml.RemoveNode(1UL));
    ASSERT_TRUE(xml.IntoElem());
    EXPECT_TRUE(xml.ModifyData("item", "new"));
    EXPECT_EQ(xml.GetData(), "new");

    CXmlBase copy;
    copy.CreateRoot("copy");
    EXPECT_TRUE(copy.AddNode(xml));
    EXPECT_EQ(copy.GetData(), "new");
    EXPECT_TRUE(xml.RemoveNode());
    EXPECT_EQ(xml.GetNodeName(), "list");
    EXPECT_FALSE(xml.ModifyData("list", "x"));  // it has no text
}

TEST_F(XmlTest, removesSiblings) {
    parse("<a><b/><!-- note --><c/><d/></a>");
    ASSERT_TRUE(xml.SetRoot() && xml.IntoElem() && xml.FindElem("c"));
    EXPECT_TRUE(xml.RemovePreSibElem());  // the comment
    EXPECT_TRUE(xml.RemovePreSibElem());
    EXPECT_FALSE(xml.RemovePreSibElem());
    EXPECT_TRUE(xml.RemoveNextSilElem());
    EXPECT_FALSE(xml.RemoveNextSilElem());
    EXPECT_EQ(xml.WriteToBuf(), "<a>\n    <c />\n</a>\n");
}

TEST_F(XmlTest, survivesAFile) {
    parse("<a><b>1</b></a>");
    const std::string path = testing::TempDir() + "velta_xml_test.xml";
    ASSERT_TRUE(xml.WriteToFile(path.c_str()));
    CXmlBase loaded;
    EXPECT_TRUE(loaded.LoadFile(path.c_str()));
    EXPECT_EQ(loaded.WriteToBuf(), xml.WriteToBuf());
    std::remove(path.c_str());
    EXPECT_FALSE(loaded.LoadFile(path.c_str()));
}

// A character that is cut off must not carry the parser over the end of the text, to whatever stands there.
TEST(XmlBase, endsWhereTheTextEnds) {
    const char document[] = "<?xml version='1.0' encoding='UTF-8'?><a b=\"\xe4\0?\"/>";
    CXmlBase xml;
    EXPECT_EQ(xml.Parse(document), nullptr);
}

}  // namespace
