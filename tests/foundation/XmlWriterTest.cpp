// SPDX-License-Identifier: MIT
#include "ula/foundation/xml/XmlWriter.h"

#include <gtest/gtest.h>

namespace tav::xml {
namespace {

class XmlWriterTest : public testing::Test {
protected:
    std::string finished(XmlWriter& writer) {
        writer.finish();
        output.flush();
        return text;
    }

    std::string text;
    XmlOutput output{[this](std::string_view piece) { text += piece; }};
};

TEST_F(XmlWriterTest, IndentsATabPerLevel) {
    XmlWriter writer(output, true);
    writer.beginElement("a");
    writer.attribute("x", "1");
    writer.beginElement("b");
    writer.beginElement("c");
    writer.endElement();
    writer.endElement();
    writer.endElement();
    EXPECT_EQ(finished(writer), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                "<a x=\"1\">\n\t<b>\n\t\t<c/>\n\t</b>\n</a>\n");
}

TEST_F(XmlWriterTest, WithoutIndentationThereIsNoWhiteSpace) {
    XmlWriter writer(output, false);
    writer.beginElement("a");
    writer.beginElement("b");
    writer.endElement();
    writer.endElement();
    EXPECT_EQ(finished(writer), "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a><b/></a>\n");
}

TEST_F(XmlWriterTest, EscapesWhatAReaderWouldTakeForMarkupOrForABlank) {
    XmlWriter writer(output, false);
    writer.beginElement("a");
    writer.attribute("x", "<>&\"'\t\n\r\x7F\xC3\xA9");
    writer.endElement();
    EXPECT_EQ(finished(writer), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"
                                "<a x=\"&lt;&gt;&amp;&quot;'&#9;&#10;&#13;\x7F\xC3\xA9\"/>\n");
}

TEST_F(XmlWriterTest, ValuesLongerThanTheBufferComeOutWhole) {
    std::string value;
    for (int i = 0; i < 100'000; ++i)
        value += i % 7 == 0 ? "\xE5\x86\x99" : "x&";
    output.append("<");
    output.appendValue("x", String(value));
    output.append(std::string(200'000, 'y'));
    output.flush();
    std::string expected = "<";
    for (int i = 0; i < 100'000; ++i)
        expected += i % 7 == 0 ? "\xE5\x86\x99" : "x&amp;";
    EXPECT_EQ(text, expected + std::string(200'000, 'y'));
}

TEST_F(XmlWriterTest, ACharacterAcrossTheEndOfAPieceIsKept) {
    for (std::size_t before = 1015; before < 1030; ++before) {
        text.clear();
        const std::string value = std::string(before, 'x') + "\xF0\x9F\x93\xB7" + "end";
        output.appendValue("x", String(value));
        output.flush();
        ASSERT_EQ(text, value);
    }
}

TEST_F(XmlWriterTest, NumbersHaveTheirText) {
    output.appendValue("x", -2147483647 - 1);
    output.append(" ");
    output.appendValue("x", 0.1);
    output.flush();
    EXPECT_EQ(text, "-2147483648 0.1");
}

TEST_F(XmlWriterTest, ANameThatIsNoneInXmlIsThrown) {
    XmlWriter writer(output, false);
    for (const char* name : {"", "1a", "a b", "-a", "a<", "a\"", "\n"})
        EXPECT_THROW(writer.beginElement(name), XmlException) << name;
    writer.beginElement("_a:b-c.1\xC3\xA9");
    EXPECT_THROW(writer.attribute("a=b", "1"), XmlException);
}

TEST_F(XmlWriterTest, AValueThatXmlCannotCarryIsThrownWithItsPlace) {
    try {
        output.appendValue("name", "abc\x02");
        FAIL() << "nothing was thrown";
    } catch (const XmlException& exception) {
        EXPECT_STREQ(exception.what(),
                     "XML cannot carry byte 0x02 at position 3 of attribute \"name\"");
    }
}

}  // namespace
}  // namespace tav::xml
