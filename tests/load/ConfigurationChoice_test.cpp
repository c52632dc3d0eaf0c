#include "raylume/load/ConfigurationChoice.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/load/LoadFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ConfigurationChoice : public LoadFixture {
protected:
    ConfigurationChoice()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "raylume-load-XXXXXX").string();
        folder = mkdtemp(pattern.data());
        standIns().temporaryFolder = platform::fromUtf8(folder + "/");
        document.components = standard;
        answers().configurations = {{L"Long", &longOnes}, {L" Long\tx ", &spacedOnes}, {L"", &emptyOnes}};
    }

    ~ConfigurationChoice() override { std::filesystem::remove_all(folder); }

    void write(const std::string& text)
    {
        std::ofstream(folder + "/LDRConfigName.txt", std::ios::binary) << text;
    }

    uoTempAssemblySHDDataArray_c* choose()
    {
        CDispListsDoc session;
        return &chooseComponents(session, document);
    }

    std::vector<std::string> questions() { return recorder().linesBeginning({"getTemp"}); }

    std::string folder;
    OVDLAssemblyDocument document;
    build::Components standard;
    build::Components longOnes;
    build::Components spacedOnes;
    build::Components emptyOnes;
};

constexpr char kLook[] = "getTemporaryFilePath(LDRConfigName.txt,shared)";

TEST_F(ConfigurationChoice, TakesTheDocumentsOwnArrayWithoutAFile)
{
    EXPECT_EQ(choose(), &document.components);
    EXPECT_THAT(questions(), ElementsAre(kLook));
}

TEST_F(ConfigurationChoice, TakesTheDocumentsOwnArrayWithoutATemporaryFolder)
{
    standIns().temporaryFolder.clear();
    EXPECT_EQ(choose(), &document.components);
    EXPECT_THAT(questions(), ElementsAre(kLook));
}

TEST_F(ConfigurationChoice, TakesTheDocumentsOwnArrayWhenAFolderHasTheName)
{
    std::filesystem::create_directory(folder + "/LDRConfigName.txt");
    EXPECT_EQ(choose(), &document.components);
    EXPECT_THAT(questions(), ElementsAre(kLook));
}

TEST_F(ConfigurationChoice, TakesTheArrayThatTheFileNames)
{
    write("any text\tLong\r\n");
    EXPECT_EQ(choose(), &longOnes);
    EXPECT_THAT(questions(), ElementsAre(kLook, "getTempDispListDataSHDArrayForConfig(Long)"));
}

TEST_F(ConfigurationChoice, KeepsTheDocumentsOwnArrayForAnUnknownName)
{
    write("x\tUnknown");
    EXPECT_EQ(choose(), &document.components);
    EXPECT_THAT(questions(), ElementsAre(kLook, "getTempDispListDataSHDArrayForConfig(Unknown)"));
}

struct LineCase {
    const char* name;
    std::string text;
    std::string configuration;  // Empty: the reader is not asked.
};

class FirstLine : public ConfigurationChoice, public testing::WithParamInterface<LineCase> {};

TEST_P(FirstLine, NamesTheConfigurationBehindItsFirstTab)
{
    write(GetParam().text);
    choose();
    const std::string& configuration = GetParam().configuration;
    if (configuration.empty())
        EXPECT_THAT(questions(), ElementsAre(kLook));
    else
        EXPECT_THAT(questions(),
                    ElementsAre(kLook, "getTempDispListDataSHDArrayForConfig(" + configuration + ")"));
}

const LineCase kLines[] = {
    {"empty_file", "", ""},
    {"no_tab", "Long", ""},
    {"no_tab_in_the_first_line_though_in_the_second", "Long\nx\tLong\n", ""},
    {"empty_first_line", "\nx\tLong\n", ""},
    {"ends_in_a_tab", "x\t\n", ""},
    {"ends_in_a_tab_without_a_line_end", "x\t", ""},
    {"ends_in_a_tab_and_carriage_return", "x\t\r\n", ""},
    {"nothing_before_the_tab", "\tLong\n", "Long"},
    {"no_line_end", "x\tLong", "Long"},
    {"line_feed", "x\tLong\nmore\tOther\n", "Long"},
    {"carriage_return_and_line_feed", "x\tLong\r\nmore\tOther\r\n", "Long"},
    {"only_one_carriage_return_goes", "x\tLong\r\r\n", "Long\r"},
    {"carriage_return_without_a_line_feed_stays", "x\tLong\r", "Long\r"},
    {"carriage_return_inside_stays", "x\tLo\rng\n", "Lo\rng"},
    {"later_tabs_and_blanks_belong_to_the_name", "x\t Long\tx \n", " Long\tx "},
    {"two_tabs_at_once", "x\t\tLong\n", "\tLong"},
    {"further_words_belong_to_the_name", "x\tLong and wide\n", "Long and wide"},
    {"text_of_many_blocks", std::string(10000, 'x') + "\t" + std::string(5000, 'y') + "\n",
     std::string(5000, 'y')},
    {"line_feed_at_the_end_of_a_block", "x\t" + std::string(4093, 'y') + "\nz\tw", std::string(4093, 'y')},
    {"line_feed_at_the_start_of_a_block", "x\t" + std::string(4094, 'y') + "\nz\tw",
     std::string(4094, 'y')},
    {"line_of_a_mebibyte", "x\t" + std::string((1u << 20) - 2, 'y') + "\n",
     std::string((1u << 20) - 2, 'y')},
    {"line_of_more_than_a_mebibyte_names_nothing", "x\t" + std::string((1u << 20) - 1, 'y') + "\n", ""},
    {"endless_line_names_nothing", "x\t" + std::string(3u << 20, 'y'), ""},
    {"utf_8", "x\t\xC3\xA9tude\n", "\xC3\xA9tude"},
};
INSTANTIATE_TEST_SUITE_P(Rows, FirstLine, testing::ValuesIn(kLines),
                         [](const auto& row) { return row.param.name; });

TEST_F(ConfigurationChoice, ReadsTheFileInTheAnsiCodePage)
{
    ASSERT_TRUE(platform::setAnsiCodePage(1252));
    write("x\t\xE9tude\n");
    choose();
    EXPECT_EQ(recorder().count("getTempDispListDataSHDArrayForConfig(\xC3\xA9tude)"), 1u);
}

}  // namespace
