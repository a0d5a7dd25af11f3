// SPDX-License-Identifier: MIT
#include "ula/foundation/xml/XmlDocumentRapid.h"

#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

namespace tav::xml {
namespace {

using test::TemporaryFolder;
using testing::ElementsAre;
using Document = util::SharedPtr<XmlDocumentRapid>;

std::vector<std::string> childNames(const NodeIterator& element) {
    std::vector<std::string> names;
    for (NodeIterator child = element.beginChildren(); child != element.endChildren(); ++child)
        names.push_back(child.name().toStdString());
    return names;
}

std::string reasonOf(const std::string& text) {
    XmlError error;
    return XmlDocumentRapid::loadFromData(String(text), &error) ? "read" : error.describe();
}

TEST(XmlDocumentRapidTest, ACreatedDocumentHasItsRoot) {
    const Document document = XmlDocumentRapid::create("settings");
    EXPECT_EQ(document->rootNode().name(), "settings");
    EXPECT_TRUE(document->rootNode().beginChildren() == document->rootNode().endChildren());
}

TEST(XmlDocumentRapidTest, ChildrenComeInDocumentOrderWithoutTextAndComments) {
    const Document document =
        XmlDocumentRapid::loadFromData("<r> text <a/><!-- c --><b/><?pi?><![CDATA[x]]><a/></r>");
    ASSERT_TRUE(document);
    EXPECT_THAT(childNames(document->rootNode()), ElementsAre("a", "b", "a"));
}

TEST(XmlDocumentRapidTest, AppendedChildrenAndAttributesAreFound) {
    const Document document = XmlDocumentRapid::create("r");
    NodeIterator child = document->rootNode().appendChild("a");
    child.appendAttribute("text", String("x"));
    child.appendAttribute("literal", "y");
    child.appendAttribute("int", -5);
    child.appendAttribute("double", 0.1);
    document->rootNode().appendChild("b");
    EXPECT_THAT(childNames(document->rootNode()), ElementsAre("a", "b"));
    EXPECT_EQ(child.findAttribute("text").value(), "x");
    EXPECT_EQ(child.findAttribute("literal").value(), "y");
    EXPECT_EQ(child.findAttribute("int").valueInt(), -5);
    EXPECT_EQ(child.findAttribute("double").value(), "0.1");
    EXPECT_EQ(child.findAttribute("double").valueDouble(), 0.1);
}

TEST(XmlDocumentRapidTest, AMissingAttributeIsEmptyAndZero) {
    const Document document = XmlDocumentRapid::create("r");
    const AttributeIterator attribute = document->rootNode().findAttribute("none");
    bool isNumber = true;
    EXPECT_FALSE(attribute.exists());
    EXPECT_EQ(attribute.value(), "");
    EXPECT_EQ(attribute.valueInt(&isNumber), 0);
    EXPECT_FALSE(isNumber);
    EXPECT_EQ(attribute.valueDouble(), 0);
}

TEST(XmlDocumentRapidTest, TextThatIsNoNumberReadsAsZero) {
    const Document document = XmlDocumentRapid::loadFromData("<r a='x' b='2.5' c=' 7 '/>");
    bool isNumber = true;
    EXPECT_EQ(document->rootNode().findAttribute("a").valueInt(&isNumber), 0);
    EXPECT_FALSE(isNumber);
    EXPECT_EQ(document->rootNode().findAttribute("b").valueInt(&isNumber), 0);
    EXPECT_FALSE(isNumber);
    EXPECT_EQ(document->rootNode().findAttribute("b").valueDouble(&isNumber), 2.5);
    EXPECT_TRUE(isNumber);
    EXPECT_EQ(document->rootNode().findAttribute("c").valueInt(), 7);
}

TEST(XmlDocumentRapidTest, ReferencesAreDecodedAndWhiteSpaceIsNormalised) {
    const Document document =
        XmlDocumentRapid::loadFromData("<r a='&lt;&gt;&amp;&quot;&apos;&#233;&#xE9;&#10;'\n"
                                       " b='x\ty\r\nz'/>");
    EXPECT_EQ(document->rootNode().findAttribute("a").value(), "<>&\"'\xC3\xA9\xC3\xA9\n");
    EXPECT_EQ(document->rootNode().findAttribute("b").value(), "x y z");
}

TEST(XmlDocumentRapidTest, AStringOutlivesItsDocument) {
    String value;
    {
        const Document document = XmlDocumentRapid::loadFromData("<r a='value'/>");
        value = document->rootNode().findAttribute("a").value();
    }
    EXPECT_EQ(value, "value");
}

TEST(XmlDocumentRapidTest, WhatIsNotWellFormedIsRefusedWithLineAndColumn) {
    EXPECT_EQ(reasonOf("<r>\n <a>\n</r>").substr(0, 4), "3:3:");
    EXPECT_EQ(reasonOf("<r a='1' a='2'/>"), "1:2: not well-formed: an attribute is given twice");
    EXPECT_EQ(reasonOf("<r><b x='1' y='2' x='3'/></r>"),
              "1:5: not well-formed: an attribute is given twice");
    EXPECT_EQ(reasonOf("<r/>\n<s/>"), "2:2: not well-formed: a second root element");
    EXPECT_THAT(reasonOf("<r/>text"), testing::HasSubstr("text outside the root element"));
    EXPECT_THAT(reasonOf("text<r/>"), testing::HasSubstr("text outside the root element"));
    EXPECT_EQ(reasonOf("<r a='&x;'/>"),
              "1:7: not well-formed: \"&\" without a reference that XML defines");
    EXPECT_EQ(reasonOf("<r a='\x01'/>"),
              "1:7: not well-formed: a byte that is no character of XML");
    EXPECT_THAT(reasonOf(""), testing::HasSubstr("no element"));
    EXPECT_THAT(reasonOf("<!-- only -->"), testing::HasSubstr("no element"));
}

TEST(XmlDocumentRapidTest, ManyAttributesAreCheckedToo) {
    std::string text = "<r";
    for (int i = 0; i < 20'000; ++i)
        text += " a" + std::to_string(i) + "=''";
    EXPECT_EQ(reasonOf(text + "/>"), "read");
    EXPECT_THAT(reasonOf(text + " a17=''/>"), testing::HasSubstr("an attribute is given twice"));
}

TEST(XmlDocumentRapidTest, CommentsAndSectionsMayHoldAnything) {
    EXPECT_EQ(reasonOf("<!-- Q & A --><r><![CDATA[ & < ]]><?pi & ?></r>"), "read");
    EXPECT_EQ(reasonOf("<!DOCTYPE r [<!ENTITY a \"&b;\">]><r/>"), "read");
    EXPECT_THAT(reasonOf("<!-- Q & A --><r a='Q & A'/>"),
                testing::HasSubstr("\"&\" without a reference"));
}

TEST(XmlDocumentRapidTest, NotStrictReadsWhatCanBeRead) {
    const TemporaryFolder folder;
    test::writeFile(folder / "d.xml", "<r a='&x;' a='2' b='\xFF'/>");
    EXPECT_FALSE(XmlDocumentRapid::load(String(folder / "d.xml"), true));
    const Document document = XmlDocumentRapid::load(String(folder / "d.xml"), false);
    ASSERT_TRUE(document);
    EXPECT_EQ(document->rootNode().findAttribute("a").value(), "&x;");
}

TEST(XmlDocumentRapidTest, AMissingFileIsEmptyAndSaysSo) {
    XmlError error;
    EXPECT_FALSE(XmlDocumentRapid::load("/no/such/file", true, &error));
    EXPECT_TRUE(error.isMissing);
    EXPECT_EQ(error.describe(), "/no/such/file: cannot be opened: No such file or directory");
    EXPECT_FALSE(XmlDocumentRapid::load("", true, &error));
    EXPECT_TRUE(error.isMissing);
}

TEST(XmlDocumentRapidTest, WhatIsSavedLoadsEqual) {
    const TemporaryFolder folder;
    const String path(folder / "d.xml");
    const Document document = XmlDocumentRapid::create("r");
    NodeIterator child = document->rootNode().appendChild("a");
    child.appendAttribute("x", String("<&\">\n\t\xC3\xA9"));
    child.appendChild("b");
    document->rootNode().appendChild("c");
    for (const bool indent : {true, false}) {
        document->save(path, indent, true);
        const Document again = XmlDocumentRapid::load(path, true);
        ASSERT_TRUE(again);
        EXPECT_THAT(childNames(again->rootNode()), ElementsAre("a", "c"));
        EXPECT_EQ(again->rootNode().beginChildren().findAttribute("x").value(),
                  "<&\">\n\t\xC3\xA9");
    }
    EXPECT_THAT(test::readFile(folder / "d.xml"), testing::HasSubstr("<b/></a><c/></r>"));
}

TEST(XmlDocumentRapidTest, ALoadedDocumentIsSavedWithoutWhatIsNotRead) {
    const TemporaryFolder folder;
    const Document document =
        XmlDocumentRapid::loadFromData("<!-- c --><r>text<a><b/>more</a><c/>end</r>");
    document->save(String(folder / "d.xml"), true, true);
    EXPECT_EQ(
        test::readFile(folder / "d.xml"),
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<r>\n\t<a>\n\t\t<b/>\n\t</a>\n\t<c/>\n</r>\n");
}

TEST(XmlDocumentRapidTest, WhatCannotBeSavedIsThrownAndTheOldFileStays) {
    const TemporaryFolder folder;
    test::writeFile(folder / "d.xml", "old");
    const Document document = XmlDocumentRapid::create("r");
    document->rootNode().appendAttribute("a", String("\x01"));
    EXPECT_THROW(document->save(String(folder / "d.xml"), true, true), XmlException);
    EXPECT_EQ(test::readFile(folder / "d.xml"), "old");
    EXPECT_THROW(document->save("", true, true), XmlException);
    EXPECT_THROW(XmlDocumentRapid::create("no name")->save(String(folder / "e.xml"), true, true),
                 XmlException);
    EXPECT_THAT(folder.names(), ElementsAre("d.xml"));
}

TEST(XmlDocumentRapidTest, IteratorsAreEqualWhenBothPositionsMatch) {
    const Document document = XmlDocumentRapid::loadFromData("<r><a/><b/></r>");
    const NodeIterator root = document->rootNode();
    EXPECT_TRUE(root.beginChildren() == root.beginChildren());
    NodeIterator second = root.beginChildren();
    ++second;
    EXPECT_FALSE(second == root.beginChildren());
    EXPECT_FALSE(root.beginChildren().endChildren() == root.endChildren());
}

}  // namespace
}  // namespace tav::xml
