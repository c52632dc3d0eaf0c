#include "raylume/platform/XmlTable.h"

#include <expat.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "raylume/platform/Text.h"
#include "tests/platform/TemporaryFolder.h"

using namespace std::string_literals;
using platform::XmlLoad;
using platform::XmlStatus;
using platform::XmlTable;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class Bytes final : public platform::InputFile {
public:
    Bytes(std::string bytes, std::size_t step) : bytes_(std::move(bytes)), step_(step) {}

    std::size_t read(void* buffer, std::size_t size) override
    {
        const std::size_t count = std::min({size, step_, bytes_.size() - at_});
        std::memcpy(buffer, bytes_.data() + at_, count);
        at_ += count;
        return count;
    }

private:
    const std::string bytes_;
    const std::size_t step_;
    std::size_t at_ = 0;
};

/// Elements a and b, attributes x, y and z.
class Table {
public:
    explicit Table(const std::string& xml, std::size_t step = 1u << 20)
        : table_({{"a", "b"}, {"x", "y", "z"}})
    {
        load_ = table_.load([&] { return std::make_unique<Bytes>(xml, step); });
    }

    const XmlLoad& load() const { return load_; }
    bool isLoaded() const { return load_.status == XmlStatus::kLoaded; }
    const XmlTable& table() const { return table_; }

    std::vector<std::uint32_t> inside(std::uint32_t element, int name) const
    {
        std::vector<std::uint32_t> found;
        const XmlTable::Range range = table_.descendants(element, name);
        for (std::size_t i = range.first; i < range.last; ++i) {
            found.push_back(table_.elementAt(name, i));
        }
        return found;
    }

    std::optional<std::string> attribute(std::uint32_t element, int name) const
    {
        std::string_view text;
        auto attributes = table_.attributes(element);
        return attributes.find(name, text) ? std::optional(std::string(text)) : std::nullopt;
    }

private:
    XmlTable table_;
    XmlLoad load_;
};

constexpr int kA = 0;
constexpr int kB = 1;
constexpr int kX = 0;
constexpr int kY = 1;
constexpr int kZ = 2;

TEST(XmlTable, FindsDescendantsInDocumentOrder)
{
    const Table table("<r><a><b/><c><b/></c><a><b/></a></a><b/><a/></r>");
    ASSERT_TRUE(table.isLoaded());
    EXPECT_THAT(table.inside(0, kA), ElementsAre(1, 4, 7));
    EXPECT_THAT(table.inside(0, kB), ElementsAre(2, 3, 5, 6));
    EXPECT_THAT(table.inside(1, kA), ElementsAre(4));
    EXPECT_THAT(table.inside(1, kB), ElementsAre(2, 3, 5));
    EXPECT_THAT(table.inside(4, kB), ElementsAre(5));
    EXPECT_THAT(table.inside(7, kB), IsEmpty());
    EXPECT_THAT(table.inside(2, kB), IsEmpty());
}

TEST(XmlTable, DoesNotFindTheRootInItself)
{
    const Table table("<a x='1'><a/><b/></a>");
    EXPECT_THAT(table.inside(0, kA), ElementsAre(1));
    EXPECT_THAT(table.inside(0, kB), ElementsAre(2));
    EXPECT_EQ(table.attribute(0, kX), "1");
}

TEST(XmlTable, KeepsAttributesOfItsVocabulary)
{
    const Table table("<r y='root'><a z='3' w='no' x='1'/><b x=''/><a/></r>");
    EXPECT_EQ(table.attribute(0, kY), "root");
    EXPECT_EQ(table.attribute(1, kX), "1");
    EXPECT_EQ(table.attribute(1, kY), std::nullopt);
    EXPECT_EQ(table.attribute(1, kZ), "3");
    EXPECT_EQ(table.attribute(2, kX), "");
    EXPECT_EQ(table.attribute(3, kX), std::nullopt);
}

TEST(XmlTable, FindsAttributesInAnyOrderAndAgain)
{
    const Table table("<r><a y='2' z='3' x='1'/></r>");
    auto attributes = table.table().attributes(1);
    std::string_view text;
    for (const auto& [name, value] :
         {std::pair{kX, "1"}, {kY, "2"}, {kZ, "3"}, {kZ, "3"}, {kY, "2"}, {kX, "1"}}) {
        ASSERT_TRUE(attributes.find(name, text));
        EXPECT_EQ(text, value);
    }
}

TEST(XmlTable, NormalisesAttributes)
{
    const Table table("<r><a x=' a\n\tb ' y='&lt;&#x41;&quot;&#10;' z=\"'\"/></r>");
    EXPECT_EQ(table.attribute(1, kX), " a  b ");
    EXPECT_EQ(table.attribute(1, kY), "<A\"\n");
    EXPECT_EQ(table.attribute(1, kZ), "'");
}

class XmlTextLength : public testing::TestWithParam<std::size_t> {};

TEST_P(XmlTextLength, MakesNoDifference)
{
    const std::string text(GetParam(), 'q');
    const Table table("<r><b z='before'/><a x='" + text + "' y='" + text + "'/><b z='behind'/></r>");
    ASSERT_TRUE(table.isLoaded());
    EXPECT_EQ(table.attribute(1, kZ), "before");
    EXPECT_EQ(table.attribute(2, kX), text);
    EXPECT_EQ(table.attribute(2, kY), text);
    EXPECT_EQ(table.attribute(3, kZ), "behind");
}

INSTANTIATE_TEST_SUITE_P(Sizes, XmlTextLength,
                         testing::Values(0, 1, 254, 255, 256, 32700, 65520, 65528, 65536, 200000, 5000000));

TEST(XmlTable, KeepsManyElements)
{
    std::string xml = "<r>";
    for (int i = 0; i < 50000; ++i) {
        xml += "<a x='" + std::to_string(i) + "' y='" + std::string(static_cast<std::size_t>(i % 90), '.') +
               "'/>";
    }
    const Table table(xml + "</r>", 777);
    ASSERT_TRUE(table.isLoaded());
    ASSERT_EQ(table.table().descendants(0, kA).length(), 50000u);
    for (std::uint32_t i = 0; i < 50000; ++i) {
        ASSERT_EQ(table.attribute(i + 1, kX), std::to_string(i));
    }
    EXPECT_EQ(table.load().size, xml.size() + 4);
}

TEST(XmlTable, ReadsByteByByte)
{
    const Table table("<?xml version='1.0' encoding='UTF-8'?><r><a x='\u00E9'/></r>", 1);
    EXPECT_EQ(table.attribute(1, kX), "\u00E9");
}

TEST(XmlTable, TellsWhatStoppedItAndWhere)
{
    const Table table("<r><a></b></r>");
    EXPECT_EQ(table.load().status, XmlStatus::kRefused);
    EXPECT_EQ(table.load().offset, 8u);
    EXPECT_THAT(table.load().reason, HasSubstr("mismatched tag"));
    const Table fine("<r/>");
    EXPECT_EQ(fine.load().size, 4u);
    EXPECT_THAT(fine.load().reason, IsEmpty());
}

TEST(XmlTable, ReadsFiles)
{
    const TemporaryFolder folder;
    folder.write("f.xml", "<r><a/></r>");
    XmlTable table({{"a"}, {}});
    EXPECT_EQ(table.load(folder.wide() + L"\\f.xml").status, XmlStatus::kLoaded);
    EXPECT_EQ(table.descendants(0, 0).length(), 1u);
    XmlTable none({{"a"}, {}});
    EXPECT_EQ(none.load(folder.wide() + L"/none.xml").status, XmlStatus::kNotFound);
    EXPECT_EQ(none.load(folder.wide()).status, XmlStatus::kNotFound);
}

struct DocumentCase {
    const char* name;
    std::string xml;
};

class XmlRefused : public testing::TestWithParam<DocumentCase> {};

TEST_P(XmlRefused, AtOnceAndByByte)
{
    EXPECT_EQ(Table(GetParam().xml).load().status, XmlStatus::kRefused);
    const Table slow(GetParam().xml, 1);
    EXPECT_EQ(slow.load().status, XmlStatus::kRefused);
    EXPECT_FALSE(slow.load().reason.empty());
}

const std::string kBody = "<r><a/></r>";

std::string declared(const std::string& encoding, const std::string& body = kBody)
{
    return "<?xml version=\"1.0\" encoding=\"" + encoding + "\"?>" + body;
}

INSTANTIATE_TEST_SUITE_P(
    Rows, XmlRefused,
    testing::Values(
        DocumentCase{"empty", ""}, DocumentCase{"two_roots", kBody + kBody},
        DocumentCase{"open", "<r><a/>"}, DocumentCase{"duplicate_attribute", "<r><a x='1' x='1'/></r>"},
        DocumentCase{"undefined_entity", "<r>&e;</r>"},
        DocumentCase{"undefined_entity_in_a_value", "<r><a x='&e;'/></r>"},
        DocumentCase{"undefined_entity_with_a_doctype", "<!DOCTYPE r []><r>&e;</r>"},
        DocumentCase{"bad_bytes", "<r>\xC0\x80</r>"}, DocumentCase{"surrogate", "<r>\xED\xA0\x80</r>"},
        DocumentCase{"control", "<r>\x01</r>"}, DocumentCase{"control_by_number", "<r>&#1;</r>"},
        DocumentCase{"zero_by_number", "<r>&#0;</r>"}, DocumentCase{"no_quotes", "<r><a x=1/></r>"},
        DocumentCase{"less_than_in_a_value", "<r><a x='<'/></r>"},
        DocumentCase{"late_declaration", " <?xml version='1.0'?><r/>"},
        DocumentCase{"external_subset", "<!DOCTYPE r SYSTEM 'x.dtd'>" + kBody},
        DocumentCase{"public_subset", "<!DOCTYPE r PUBLIC 'p' 'x.dtd'>" + kBody},
        DocumentCase{"external_subset_and_an_entity", "<!DOCTYPE r SYSTEM 'x.dtd'><r>&e;</r>"},
        DocumentCase{"external_entity", "<!DOCTYPE r [<!ENTITY e SYSTEM 'file:///etc/hostname'>]>" + kBody},
        DocumentCase{"external_entity_in_use", "<!DOCTYPE r [<!ENTITY e SYSTEM 'x'>]><r>&e;</r>"},
        DocumentCase{"public_entity", "<!DOCTYPE r [<!ENTITY e PUBLIC 'p' 'x'>]>" + kBody},
        DocumentCase{"notation", "<!DOCTYPE r [<!NOTATION n SYSTEM 'x'>]>" + kBody},
        DocumentCase{"parameter_entity", "<!DOCTYPE r [<!ENTITY % p 'x'>]>" + kBody},
        DocumentCase{"external_parameter_entity", "<!DOCTYPE r [<!ENTITY % p SYSTEM 'x'>]>" + kBody},
        DocumentCase{"unknown_parameter_entity", "<!DOCTYPE r [%p;]><r>&e;</r>"},
        DocumentCase{"unknown_parameter_entity_alone", "<!DOCTYPE r [%p;]>" + kBody},
        DocumentCase{"unknown_parameter_entity_standing_alone",
                     "<?xml version='1.0' standalone='yes'?><!DOCTYPE r [%p;]>" + kBody},
        DocumentCase{"entity_of_itself", "<!DOCTYPE r [<!ENTITY e '&e;'>]><r>&e;</r>"},
        DocumentCase{"undeclared_prefix", "<r><p:a/></r>"},
        DocumentCase{"undeclared_prefix_of_another", "<r><p:q/></r>"},
        DocumentCase{"undeclared_prefix_of_an_attribute", "<r><a p:x='1'/></r>"},
        DocumentCase{"undeclared_prefix_of_another_attribute", "<r><q p:q='1'/></r>"},
        DocumentCase{"prefix_out_of_scope", "<r><a xmlns:p='u'/><p:a/></r>"},
        DocumentCase{"two_colons", "<r xmlns:p='u'><p:a:b/></r>"},
        DocumentCase{"undeclaring_a_prefix", "<r xmlns:p='u'><a xmlns:p=''/></r>"},
        DocumentCase{"one_attribute_by_two_prefixes",
                     "<r xmlns:p='u' xmlns:q='u'><a p:x='1' q:x='2'/></r>"},
        DocumentCase{"version_1_1", "<?xml version='1.1'?>" + kBody},
        DocumentCase{"version_2", "<?xml version='2.0'?>" + kBody},
        DocumentCase{"unknown_encoding", declared("no-such-encoding")},
        DocumentCase{"utf7", declared("UTF-7")},
        DocumentCase{"utf7_by_another_name", declared("unicode-1-1-utf-7")},
        DocumentCase{"ebcdic", declared("IBM037")}, DocumentCase{"utf16_in_bytes", declared("UTF-16")},
        DocumentCase{"utf32_in_bytes", declared("UTF-32")}, DocumentCase{"hz", declared("HZ-GB-2312")},
        DocumentCase{"iso_2022", declared("ISO-2022-JP")}, DocumentCase{"scsu", declared("SCSU")},
        DocumentCase{"bad_bytes_of_932", declared("Shift_JIS", "<r>\x82</r>")},
        DocumentCase{"cut_character_at_the_end", declared("Shift_JIS", kBody + "\x82")},
        DocumentCase{"unassigned_byte_of_1253", declared("windows-1253", "<r>\xD2</r>")},
        DocumentCase{"lone_surrogate_of_cesu", declared("CESU-8", "<r>\xED\xA0\x80</r>")},
        DocumentCase{"lone_surrogate_of_cesu_at_the_end", declared("CESU-8", kBody + "\xED\xA0\x80")},
        DocumentCase{"instruction_with_a_colon", "<?p:i x?>" + kBody},
        DocumentCase{"inner_instruction_with_a_colon", "<r><a/><?p:i?></r>"},
        DocumentCase{"instruction_with_a_colon_behind_the_root", kBody + "<?i:?>"},
        DocumentCase{"entity_with_a_colon", "<!DOCTYPE r [<!ENTITY p:e 'x'>]>" + kBody},
        DocumentCase{"document_type_with_two_colons", "<!DOCTYPE a:b:c>" + kBody},
        DocumentCase{"declared_attribute_with_two_colons",
                     "<!DOCTYPE r [<!ATTLIST q a:b:c CDATA #IMPLIED>]>" + kBody},
        DocumentCase{"declared_element_with_two_colons",
                     "<!DOCTYPE r [<!ATTLIST a:b:c x CDATA #IMPLIED>]>" + kBody},
        DocumentCase{"undeclared_prefix_of_a_default",
                     "<!DOCTYPE r [<!ATTLIST q p:x CDATA 'd'>]><r><a/><q/></r>"},
        DocumentCase{"undeclared_prefix_of_the_root", "<p:r><a/></p:r>"},
        DocumentCase{"undeclared_prefix_behind_a_scope", "<r><q xmlns:p='u'><p:q/></q><a p:x='1'/></r>"},
        DocumentCase{"ascii_beyond_its_range", declared("US-ASCII", "<r>\xE9</r>")}),
    [](const auto& row) { return row.param.name; });

class XmlAccepted : public testing::TestWithParam<DocumentCase> {};

TEST_P(XmlAccepted, AtOnceAndByByte)
{
    for (const std::size_t step : {std::size_t{1} << 20, std::size_t{1}}) {
        const Table table(GetParam().xml, step);
        ASSERT_TRUE(table.isLoaded()) << table.load().reason;
        EXPECT_EQ(table.inside(0, kA).size(), 1u);
        EXPECT_EQ(table.load().size, GetParam().xml.size());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, XmlAccepted,
    testing::Values(
        DocumentCase{"plain", kBody}, DocumentCase{"version", "<?xml version='1.0'?>" + kBody},
        DocumentCase{"byte_order_mark", "\xEF\xBB\xBF" + kBody},
        DocumentCase{"standing_alone", "<?xml version='1.0' standalone='yes'?>" + kBody},
        DocumentCase{"inner_subset", "<!DOCTYPE r [<!ENTITY e 'x'><!ELEMENT r ANY>]><r>&e;<a/></r>"},
        DocumentCase{"comment_and_instruction", "<!-- c --><?p i?>" + kBody + "<!-- d -->\n"},
        DocumentCase{"sections", "<r><![CDATA[<a/>]]><a/></r>"},
        DocumentCase{"default_namespace", "<r xmlns='u'><a/></r>"},
        DocumentCase{"own_namespace", "<r><a xmlns='u'/></r>"},
        DocumentCase{"other_prefix", "<r xmlns:p='u'><p:a/><a p:x='1'/></r>"},
        DocumentCase{"prefix_of_a_default",
                     "<!DOCTYPE r [<!ATTLIST r xmlns:p CDATA 'u'>]><r><p:q/><a p:x='1'/></r>"},
        DocumentCase{"prefix_declared_behind_its_use", "<r><a p:x='1' xmlns:p='u'/></r>"},
        DocumentCase{"prefix_declared_anew", "<r xmlns:p='u'><q xmlns:p='v' p:x='1'/><a p:x='1'/></r>"},
        DocumentCase{"one_attribute_in_two_namespaces",
                     "<r xmlns:p='u' xmlns:q='v'><a x='0' p:x='1' q:x='2'/></r>"},
        DocumentCase{"default_namespace_taken_back", "<r xmlns='u'><a xmlns=''/></r>"},
        DocumentCase{"instruction_with_a_colon_in_its_text", "<?i p:i?>" + kBody},
        DocumentCase{"prefix_of_the_language", "<r xml:lang='en'><a xml:space='preserve'/></r>"},
        DocumentCase{"utf8_in_small", declared("utf-8")},
        DocumentCase{"transcoded", declared("windows-1252")}),
    [](const auto& row) { return row.param.name; });

std::string utf16(const std::wstring& text, bool isBig)
{
    std::string bytes;
    for (const wchar_t character : text) {
        const char low = static_cast<char>(character & 0xFF);
        const char high = static_cast<char>(character >> 8 & 0xFF);
        bytes += isBig ? std::string{high, low} : std::string{low, high};
    }
    return bytes;
}

struct EncodingCase {
    const char* name;
    std::string xml;
    std::string text;
};

class XmlEncoded : public testing::TestWithParam<EncodingCase> {};

TEST_P(XmlEncoded, GivesTheTextInUtf8)
{
    for (const std::size_t step : {std::size_t{1} << 20, std::size_t{1}, std::size_t{3}}) {
        const Table table(GetParam().xml, step);
        ASSERT_TRUE(table.isLoaded()) << table.load().reason;
        EXPECT_EQ(table.attribute(1, kX), GetParam().text);
    }
}

std::string holding(const std::string& bytes)
{
    return "<r><a x='" + bytes + "'/></r>";
}

INSTANTIATE_TEST_SUITE_P(
    Rows, XmlEncoded,
    testing::Values(
        EncodingCase{"utf8", holding("\u00E9\u6F22\U0001F600"), "\u00E9\u6F22\U0001F600"},
        EncodingCase{"latin1", declared("ISO-8859-1", holding("\xE9")), "\u00E9"},
        EncodingCase{"windows_1252", declared("windows-1252", holding("\x80\xE9")), "\u20AC\u00E9"},
        EncodingCase{"windows_1251", declared("Windows-1251", holding("\xC6")), "\u0416"},
        EncodingCase{"latin9", declared("ISO-8859-15", holding("\xA4")), "\u20AC"},
        EncodingCase{"shift_jis", declared("Shift_JIS", holding("\x8A\xBF\x8E\x9A\x83\x5C")),
                     "\u6F22\u5B57\u30BD"},
        EncodingCase{"euc", declared("EUC-JP", holding("\xB4\xC1")), "\u6F22"},
        EncodingCase{"gb18030", declared("GB18030", holding("\xBA\xBA\x94\x39\xFC\x36")),
                     "\u6C49\U0001F600"},
        EncodingCase{"big5", declared("Big5", holding("\xBA\x7E")), "\u6F22"},
        EncodingCase{"cesu", declared("CESU-8", holding("\xED\xA0\xBD\xED\xB8\x80")), "\U0001F600"},
        EncodingCase{"utf16_little", "\xFF\xFE" + utf16(L"<r><a x='\u00E9'/></r>", false), "\u00E9"},
        EncodingCase{"utf16_big", "\xFE\xFF" + utf16(L"<r><a x='\u6F22'/></r>", true), "\u6F22"},
        EncodingCase{
            "utf16_declared",
            "\xFF\xFE" + utf16(L"<?xml version='1.0' encoding='UTF-16'?><r><a x='\u6F22'/></r>", false),
            "\u6F22"}),
    [](const auto& row) { return row.param.name; });

// Its table, as the library has it, puts these controls in one another's places.
TEST(XmlTable, KeepsTheControlsOfShiftJis)
{
    EXPECT_EQ(Table(declared("Shift_JIS", holding("\x7F"))).attribute(1, kX), "\x7F");
    EXPECT_FALSE(Table(declared("Shift_JIS", holding("\x1A"))).isLoaded());
    EXPECT_FALSE(Table(declared("Shift_JIS", holding("\x1C"))).isLoaded());
}

TEST(XmlTable, ReadsLargeTranscodedDocuments)
{
    std::string xml = declared("windows-1252", "<r>");
    for (int i = 0; i < 20000; ++i) {
        xml += "<a x='\xE9" + std::to_string(i) + "'/>";
    }
    const Table table(xml + "</r>");
    ASSERT_TRUE(table.isLoaded());
    EXPECT_EQ(table.load().size, xml.size() + 4);
    EXPECT_EQ(table.attribute(20000, kX), "\u00E919999");
}

TEST(XmlTable, TakesDefaultsOfTheDocument)
{
    const Table table("<!DOCTYPE r [<!ATTLIST a x CDATA 'd' y CDATA #IMPLIED>]><r><a/><a x='own'/></r>");
    EXPECT_EQ(table.attribute(1, kX), "d");
    EXPECT_EQ(table.attribute(1, kY), std::nullopt);
    EXPECT_EQ(table.attribute(2, kX), "own");
}

TEST(XmlTable, EndsADocumentThatGrowsByDefaults)
{
    std::string xml = "<!DOCTYPE r [<!ATTLIST a x CDATA '" + std::string(100000, 'v') + "'>]><r>";
    for (int i = 0; i < 1000; ++i) {
        xml += "<a/>";
    }
    EXPECT_EQ(Table(xml + "</r>").load().status, XmlStatus::kOutOfMemory);
}

// Also where none of them is kept: each element would take its time.
TEST(XmlTable, EndsADocumentThatGrowsByManyDefaults)
{
    std::string xml = "<!DOCTYPE r [<!ATTLIST q";
    for (int i = 0; i < 5000; ++i) {
        xml += " n" + std::to_string(i) + " CDATA ''";
    }
    xml += ">]><r>";
    for (int i = 0; i < 20000; ++i) {
        xml += "<q/>";
    }
    EXPECT_EQ(Table(xml + "</r>").load().status, XmlStatus::kOutOfMemory);
}

// A name costs time each time, too, and a declaration of the document gives it to every element.
TEST(XmlTable, EndsADocumentThatGrowsByALongNameOfADefault)
{
    for (const char* element : {"a", "q"}) {
        std::string xml =
            "<!DOCTYPE r [<!ATTLIST "s + element + " " + std::string(500000, 'n') + " CDATA ''>]><r>";
        for (int i = 0; i < 1000; ++i) {
            xml += "<"s + element + "/>";
        }
        EXPECT_EQ(Table(xml + "</r>").load().status, XmlStatus::kOutOfMemory) << element;
    }
}

TEST(XmlTable, TakesNoTimeForALongNameWithManyDefaults)
{
    std::string xml = "<!DOCTYPE r [<!ATTLIST " + std::string(2000000, 'n');
    for (int i = 0; i < 100000; ++i) {
        xml += " n" + std::to_string(i) + " CDATA #IMPLIED";
    }
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(Table(xml + ">]><r/>").isLoaded());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST(XmlTable, EndsADocumentThatGrowsByADeclaredNamespace)
{
    std::string xml = "<!DOCTYPE r [<!ATTLIST a xmlns:p CDATA '" + std::string(500000, 'u') + "'>]><r>";
    for (int i = 0; i < 1000; ++i) {
        xml += "<a/>";
    }
    EXPECT_EQ(Table(xml + "</r>").load().status, XmlStatus::kOutOfMemory);
}

TEST(XmlTable, EndsADocumentThatGrowsByElements)
{
    std::string elements;
    for (int i = 0; i < 62000; ++i) {
        elements += "<a/>";
    }
    std::string xml = "<!DOCTYPE r [<!ENTITY e '" + elements + "'>]><r>";
    for (int i = 0; i < 12; ++i) {
        xml += "&e;";
    }
    const Table table(xml + "</r>");
    EXPECT_EQ(table.load().status, XmlStatus::kOutOfMemory);
    EXPECT_TRUE(table.table().isEmpty());
}

// The shortest tags there are, in the longest and the shortest pieces.
TEST(XmlTable, LetsElementsThroughThatAreWrittenOut)
{
    std::string open = "<r>";
    std::string close;
    for (int i = 0; i < 200000; ++i) {
        open += "<a>";
        close += "</a>";
    }
    EXPECT_TRUE(Table(open + close + "</r>").isLoaded());
    EXPECT_TRUE(Table(open + close + "</r>", 1).isLoaded());
}

TEST(XmlTable, TakesNoTimeForALongNamespace)
{
    std::string xml =
        "<r xmlns='" + std::string(1000000, 'd') + "' xmlns:p='" + std::string(1000000, 'u') + "'>";
    for (int i = 0; i < 100000; ++i) {
        xml += "<p:q p:x=''/><a/>";
    }
    const auto start = std::chrono::steady_clock::now();
    const Table table(xml + "</r>");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    ASSERT_TRUE(table.isLoaded()) << table.load().reason;
    EXPECT_EQ(table.inside(0, kA).size(), 100000u);
}

/// Small documents full of prefixes, right and wrong.
class Prefixes {
public:
    explicit Prefixes(unsigned seed) : random_(seed) {}

    std::string element(int depth)
    {
        const std::string name =
            oneOf({"a", "a", "a", "p:a", "p:a", "q:b", "p:1", "xml:a", "xmlns:a", "p:\u00E9", "p:\u0660",
                   "p:\u02BB", "p:\u0301", "p:\u3005", "p:.", "p:_", "p:a:b", ":a", "p:"});
        std::string xml = "<" + name;
        for (int i = 0; i < number(4); ++i) {
            xml += " " +
                   oneOf({"x",       "p:x",     "q:x",     "q:x",     "p:y",     "xml:lang",  "xmlns",
                          "xmlns:p", "xmlns:p", "xmlns:p", "xmlns:q", "xmlns:q", "xmlns:xml", "xmlns:xmlns",
                          "xmlns:1", "xmlns:",  "xmlnsx",  "p:xmlns", "p:-x",    "r:x"}) +
                   "='" +
                   oneOf({"u", "u", "u", "v", "v", "", "http://www.w3.org/XML/1998/namespace",
                          "http://www.w3.org/2000/xmlns/"}) +
                   "'";
        }
        xml += ">";
        for (int i = 0; depth > 0 && i < number(3); ++i) {
            xml += element(depth - 1);
        }
        return xml + "</" + name + ">";
    }

private:
    int number(int count) { return std::uniform_int_distribution<int>(0, count - 1)(random_); }
    std::string oneOf(const std::vector<std::string>& texts)
    {
        return texts[static_cast<std::size_t>(number(static_cast<int>(texts.size())))];
    }

    std::mt19937 random_;
};

bool isLoadedByAnother(const std::string& xml)
{
    const XML_Parser parser = XML_ParserCreateNS(nullptr, '\f');
    const XML_Status status = XML_Parse(parser, xml.data(), static_cast<int>(xml.size()), 1);
    XML_ParserFree(parser);
    return status == XML_STATUS_OK;
}

// The parser's own rules of namespaces, which the table does not use for the time that they can take.
TEST(XmlTable, AgreesOnNamespacesWithTheParser)
{
    Prefixes prefixes(1);
    int loaded = 0;
    int refused = 0;
    while (loaded < 2000 || refused < 2000) {
        const std::string xml =
            "<r xmlns:p='u' xmlns:q='v'>" + prefixes.element(2) + prefixes.element(0) + "</r>";
        const bool expected = isLoadedByAnother(xml);
        ASSERT_EQ(Table(xml).isLoaded(), expected) << xml;
        ++(expected ? loaded : refused);
    }
}

TEST(XmlTable, EndsADocumentOfEntitiesOfEntities)
{
    std::string xml = "<!DOCTYPE r [<!ENTITY e0 'x'>";
    for (int i = 1; i < 50000; ++i) {
        xml += "<!ENTITY e" + std::to_string(i) + " '&e" + std::to_string(i - 1) + ";'>";
    }
    EXPECT_EQ(Table(xml + "]><r><a x='&e49999;'/></r>").load().status, XmlStatus::kOutOfMemory);
    std::string laughs = "<!DOCTYPE r [<!ENTITY l0 'ha'>";
    for (int i = 1; i < 40; ++i) {
        const std::string before = "&l" + std::to_string(i - 1) + ";";
        laughs += "<!ENTITY l" + std::to_string(i) + " '" + before + before + "'>";
    }
    EXPECT_EQ(Table(laughs + "]><r>&l39;</r>").load().status, XmlStatus::kOutOfMemory);
}

TEST(XmlTable, TakesNoStackForNesting)
{
    std::string xml;
    for (int i = 0; i < 1000000; ++i) {
        xml += "<a>";
    }
    for (int i = 0; i < 1000000; ++i) {
        xml += "</a>";
    }
    const Table table(xml);
    ASSERT_TRUE(table.isLoaded());
    EXPECT_EQ(table.inside(0, kA).size(), 999999u);
    EXPECT_EQ(table.inside(999998, kA), (std::vector<std::uint32_t>{999999}));
}

TEST(XmlTable, IsEmptyAfterARefusal)
{
    EXPECT_TRUE(XmlTable({{"a"}, {"x"}}).isEmpty());
    EXPECT_FALSE(Table("<q/>").table().isEmpty());
    const std::string defaults = "<!DOCTYPE r [<!ATTLIST a x CDATA '" + std::string(300000, 'v') + "'>]>";
    const struct {
        std::string xml;
        XmlStatus status;
    } rows[] = {
        {"<r><a x='1'/>", XmlStatus::kRefused},
        {"<r><a x='1'/></r><r/>", XmlStatus::kRefused},
        {"<r><a x='1'/><a p:x='1'/></r>", XmlStatus::kRefused},
        {"<r><a x='1'/><?p:i?></r>", XmlStatus::kRefused},
        {declared("windows-1253", "<r><a x='1'/>\xD2</r>"), XmlStatus::kRefused},
        {defaults + "<r><a/><a/><a/><a/><a/><a/><a/><a/></r>", XmlStatus::kOutOfMemory},
    };
    for (const auto& row : rows) {
        const Table table(row.xml);
        EXPECT_EQ(table.load().status, row.status) << row.xml.substr(0, 50);
        EXPECT_TRUE(table.table().isEmpty()) << row.xml.substr(0, 50);
    }
}

}  // namespace
