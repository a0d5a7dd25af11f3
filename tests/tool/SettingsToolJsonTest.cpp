// SPDX-License-Identifier: MIT
#include "tests/tool/ToolProcess.h"

namespace tav::test {

namespace {

constexpr const char* kHint = "     'ula settings FILE export' shows what is expected\n";

class SettingsToolJson : public ToolTest {
protected:
    void expectImportError(const std::string& json, const std::string& message) {
        expectResult(settings({"a.xml", "import", "-"}, json), 3, "",
                     "ula: standard input:" + message + "\n" + kHint);
        EXPECT_TRUE(folder.names().empty());
    }
    static std::string settingsWith(const std::string& setting) {
        return "{\"version\":1,\"groups\":{\"G\":{\"k\":" + setting + "}}}";
    }
};

constexpr const char* kEverything = R"xml(<?xml version="1.0" encoding="UTF-8"?>
<settings>
	<group name="Größe">
		<key name="写真" type="string">
			<value value="Été &quot;&amp;&lt; &#10;&#9; 😀"/>
		</key>
	</group>
	<group name=""/>
	<group name="G">
		<key name="" type="int">
			<value value="-2147483648"/>
		</key>
		<key name="array" type="string_array">
			<value value=""/>
			<value value="b"/>
		</key>
		<key name="bool" type="bool">
			<value value="1"/>
		</key>
		<key name="empty" type="string_array"/>
		<key name="half" type="double">
			<value value="0.1"/>
		</key>
		<key name="huge" type="double">
			<value value="1.7976931348623157e+308"/>
		</key>
		<key name="inf" type="double">
			<value value="-inf"/>
		</key>
		<key name="nan" type="double">
			<value value="nan"/>
		</key>
		<key name="odd nan" type="double">
			<value value="nan(0x7ff8000000000123)"/>
		</key>
		<key name="tiny" type="double">
			<value value="5e-324"/>
		</key>
		<key name="two" type="double">
			<value value="2"/>
		</key>
		<key name="zero" type="double">
			<value value="-0"/>
		</key>
	</group>
</settings>
)xml";

TEST_F(SettingsToolJson, ExportAndImportLoseNothing) {
    write("a.xml", kEverything);
    const ToolResult json = settings({"a.xml", "export"});
    ASSERT_EQ(json.code, 0) << json.errors;
    expectResult(settings({"b.xml", "import", "-"}, json.output), 0, "", "");
    expectResult(settings({"a.xml", "diff", "b.xml"}), 0, "", "");
    EXPECT_EQ(settings({"b.xml", "export", "--json"}).output, json.output);
    // Through a file too; and byte for byte what the library itself writes.
    expectResult(settings({"a.xml", "export", "a.json"}), 0, "", "");
    EXPECT_EQ(read("a.json"), json.output);
    expectResult(settings({"c.xml", "import", "a.json", "--json"}), 0, "", "");
    EXPECT_EQ(read("c.xml"), read("b.xml"));
    EXPECT_NE(read("c.xml").find("nan(0x7ff8000000000123)"), std::string::npos);
}

TEST_F(SettingsToolJson, ExportLooksLikeThis) {
    settings({"a.xml", "set", "G", "k", "3"});
    settings({"a.xml", "set", "G", "inf", "inf", "--type", "double"});
    const std::string expected = "{\n"
                                 "  \"version\": 1,\n"
                                 "  \"groups\": {\n"
                                 "    \"G\": {\n"
                                 "      \"inf\": {\"type\": \"double\", \"value\": \"inf\"},\n"
                                 "      \"k\": {\"type\": \"int\", \"value\": 3}\n"
                                 "    }\n"
                                 "  }\n"
                                 "}\n";
    expectResult(settings({"a.xml", "export"}), 0, expected, "");
    expectResult(settings({"a.xml", "list", "--json"}), 0, expected, "");
}

TEST_F(SettingsToolJson, ImportMergesKeysAndReplacesGroupsWhenAsked) {
    settings({"a.xml", "set", "G", "old", "1"});
    settings({"a.xml", "set", "H", "other", "2"});
    const std::string json = settingsWith("{\"value\":5,\"type\":\"int\"}");
    expectResult(settings({"a.xml", "import", "-"}, json), 0, "", "");
    expectResult(settings({"a.xml", "list"}), 0,
                 "G\n  k      int  5\n  old    int  1\n\nH\n  other  int  2\n", "");
    expectResult(settings({"a.xml", "import", "-", "--replace", "--backup"}, json), 0, "", "");
    expectResult(settings({"a.xml", "list"}), 0, "G\n  k      int  5\n\nH\n  other  int  2\n", "");
    EXPECT_EQ(settings({"a.xml.bak", "get", "G", "old"}).output, "1\n");
}

TEST_F(SettingsToolJson, MistakesAreToldWithLineAndColumn) {
    expectImportError("{\"version\":1,\n \"groups\":{\"G\":{\"k\":{\"type\" 3}}}}",
                      "2:29: no valid JSON: syntax error while parsing object separator - "
                      "unexpected number literal; expected ':'");
    expectImportError("{\n\"version\":2}", "2:11: the version must be 1, the only one there is");
    expectImportError("{\"groups\":{}}", "1:13: the member \"version\" is missing");
    expectImportError("[]", "1:1: an array does not belong here");
    expectImportError(settingsWith("{\"type\":\"float\",\"value\":1}"),
                      "1:47: the type must be int, bool, double, string or string_array");
    expectImportError(settingsWith("{\"type\":\"int\",\"value\":2.5}"),
                      "1:58: a value of type int must be a whole number from -2147483648 to "
                      "2147483647");
    expectImportError(settingsWith("{\"type\":\"int\"}"), "1:46: the member \"value\" is missing");
    expectImportError(settingsWith("3"), "1:33: an object must stand here, between { and }");
    expectImportError("{\"version\":1,\"groups\":{\"G\":{},\"G\":{}}}",
                      "1:33: the group \"G\" is there twice");
}

TEST_F(SettingsToolJson, ValuesOutsideTheirTypeAreRefused) {
    for (const char* setting :
         {"{\"type\":\"int\",\"value\":2147483648}", "{\"type\":\"int\",\"value\":true}",
          "{\"type\":\"bool\",\"value\":1}", "{\"type\":\"double\",\"value\":\"x\"}",
          "{\"type\":\"double\",\"value\":1e999}", "{\"type\":\"string\",\"value\":1}",
          "{\"type\":\"string_array\",\"value\":[1]}", "{\"type\":\"string\",\"value\":null}",
          "{\"type\":\"int\",\"value\":18446744073709551615}"})
        EXPECT_EQ(settings({"a.xml", "import", "-"}, settingsWith(setting)).code, 3) << setting;
    EXPECT_TRUE(folder.names().empty());
}

TEST_F(SettingsToolJson, HostileTextsAreRefusedAndNothingIsWritten) {
    const std::string deep(1'000'000, '[');
    std::string deepObjects;
    for (int i = 0; i < 200'000; ++i)
        deepObjects += "{\"a\":";
    const std::string binary("\0\xFF\xFE\x01", 4);
    const std::string longName = "{\"version\":1,\"groups\":{\"" + std::string(5'000'000, 'x');
    for (const std::string& text :
         {deep, deepObjects, binary, longName, std::string("\xEF\xBB\xBF"), std::string(),
          settingsWith("{\"type\":\"string\",\"value\":\"\xC3\"}")}) {
        const ToolResult result = settings({"a.xml", "import", "-"}, text);
        EXPECT_EQ(result.code, 3);
        EXPECT_LT(result.errors.size(), 500u);
    }
    EXPECT_TRUE(folder.names().empty());
}

TEST_F(SettingsToolJson, LongWorkShowsProgressOnATerminalOnly) {
    std::string json = "{\"version\":1,\"groups\":{\"G\":{";
    for (int i = 0; i < 60'000; ++i)
        json += (i ? ",\"" : "\"") + std::to_string(i) + "\":{\"type\":\"int\",\"value\":1}";
    write("big.json", json + "}}}");
    const std::string place = folder.path().string();
    const ToolResult import = runToolOnTerminal(place, {"settings", "a.xml", "import", "big.json"});
    EXPECT_EQ(import.code, 0);
    EXPECT_NE(import.errors.find("importing "), std::string::npos) << import.errors;
    const ToolResult exported = runToolOnTerminal(place, {"settings", "a.xml", "export"});
    EXPECT_NE(exported.errors.find("100 %  60000 keys"), std::string::npos) << exported.errors;
    EXPECT_EQ(settings({"a.xml", "export"}).errors, "");
}

}  // namespace

}  // namespace tav::test
