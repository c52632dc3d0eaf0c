#include "raylume/platform/UserSettings.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/platform/ScopedCodePage.h"
#include "tests/platform/ScopedEnvironment.h"
#include "tests/platform/TemporaryFolder.h"

using namespace std::string_literals;
using platform::SettingsKey;
using platform::SettingValue;

namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr std::size_t kRoom = 1 << 20;

const std::string kHeader = "Windows Registry Editor Version 5.00\r\n\r\n";

class UserSettings : public testing::Test {
protected:
    void write(const std::string& bytes) const { folder_.write("settings.reg", bytes); }
    void writeBody(const std::string& body) const { write(kHeader + body); }

    // A value of the key "Software\A"; not found when there is no such key.
    static SettingValue query(const std::wstring& name, std::size_t room = kRoom)
    {
        const auto key = SettingsKey::openCurrentUser(L"Software\\A");
        return key ? key->query(name, room) : SettingValue{};
    }

    static std::wstring text(const std::wstring& name)
    {
        const SettingValue value = query(name);
        return value.found && value.type == platform::kSettingText ? platform::settingText(value)
                                                                   : L"<none>";
    }

    static bool opens(const std::wstring& path) { return SettingsKey::openCurrentUser(path) != nullptr; }

    TemporaryFolder folder_;
    ScopedVariable variable_{"RAYLUME_REGISTRY", folder_ / "settings.reg"};
};

struct ValueCase {
    const char* name;
    std::string line;
    bool found;
    std::uint32_t type;
    Bytes bytes;
};

const ValueCase kValueCases[] = {
    {"text", R"("v"="ab")", true, 1, {'a', 0, 'b', 0, 0, 0}},
    {"empty_text", R"("v"="")", true, 1, {0, 0}},
    {"text_beyond_ascii", "\"v\"=\"\xC3\xB6\"", true, 1, {0xF6, 0, 0, 0}},
    {"text_beyond_the_first_plane", "\"v\"=\"\xF0\x9F\x98\x80\"", true, 1, {0x3D, 0xD8, 0x00, 0xDE, 0, 0}},
    {"escaped_backslash", R"("v"="\\")", true, 1, {'\\', 0, 0, 0}},
    {"escaped_quote", R"("v"="\"")", true, 1, {'"', 0, 0, 0}},
    {"other_escape_stands_for_itself", R"("v"="\n")", true, 1, {'\\', 0, 'n', 0, 0, 0}},
    {"number", R"("v"=dword:0000002a)", true, 4, {0x2A, 0, 0, 0}},
    {"number_in_capitals", R"("v"=DWORD:DEADBEEF)", true, 4, {0xEF, 0xBE, 0xAD, 0xDE}},
    {"short_number", R"("v"=dword:1)", true, 4, {1, 0, 0, 0}},
    {"number_with_comment", R"("v"=dword:1 ; one)", true, 4, {1, 0, 0, 0}},
    {"text_with_comment", R"("v"="a;b" ; one)", true, 1, {'a', 0, ';', 0, 'b', 0, 0, 0}},
    {"blanks_round_the_sign", "\t\"v\" = dword:1 \t", true, 4, {1, 0, 0, 0}},
    {"bytes", R"("v"=hex:01,02,ff)", true, 3, {1, 2, 0xFF}},
    {"no_bytes", R"("v"=hex:)", true, 3, {}},
    {"bytes_of_a_type", R"("v"=hex(1):61,00,00,00)", true, 1, {'a', 0, 0, 0}},
    {"text_without_terminator", R"("v"=hex(1):61,00)", true, 1, {'a', 0}},
    {"bytes_of_a_long_type", R"("v"=hex(ffffffff):01)", true, 0xFFFFFFFFu, {1}},
    {"expanded_text", R"("v"=hex(2):25,00,00,00)", true, 2, {'%', 0, 0, 0}},
    {"bytes_over_lines", "\"v\"=hex:01,\\\r\n  02,\\\r\n  03", true, 3, {1, 2, 3}},
    {"comment_behind_bytes", "\"v\"=hex:01,02 ; two", true, 3, {1, 2}},
    {"bytes_that_break_off", "\"v\"=hex:01,\\\r\n\"w\"=dword:1", true, 3, {1}},
    {"name_without_case", R"("V"=dword:1)", true, 4, {1, 0, 0, 0}},
    {"last_one_counts", "\"v\"=dword:1\r\n\"V\"=dword:2", true, 4, {2, 0, 0, 0}},
    {"deleted", "\"v\"=dword:1\r\n\"v\"=-", false, 0, {}},
    {"deleted_and_made_again", "\"v\"=-\r\n\"v\"=dword:3", true, 4, {3, 0, 0, 0}},
    {"broken_line_leaves_the_earlier_one", "\"v\"=dword:1\r\n\"v\"=dword:xyz", true, 4, {1, 0, 0, 0}},
    {"unclosed_text", R"("v"="abc)", false, 0, {}},
    {"text_and_more", R"("v"="abc" x)", false, 0, {}},
    {"unclosed_name", R"("v=dword:1)", false, 0, {}},
    {"no_sign", R"("v" dword:1)", false, 0, {}},
    {"no_data", R"("v"=)", false, 0, {}},
    {"unknown_data", R"("v"=qword:1)", false, 0, {}},
    {"number_too_long", R"("v"=dword:000000001)", false, 0, {}},
    {"number_without_digits", R"("v"=dword:)", false, 0, {}},
    {"negative_number", R"("v"=dword:-1)", false, 0, {}},
    {"byte_too_long", R"("v"=hex:001)", false, 0, {}},
    {"byte_that_is_none", R"("v"=hex:0g)", false, 0, {}},
    {"empty_byte", R"("v"=hex:01,,02)", false, 0, {}},
    {"type_without_bracket", R"("v"=hex(1:00)", false, 0, {}},
    {"type_without_digits", R"("v"=hex():00)", false, 0, {}},
    {"type_too_long", R"("v"=hex(100000000):00)", false, 0, {}},
    {"bytes_without_colon", R"("v"=hex)", false, 0, {}},
    {"backslash_within_bytes", R"("v"=hex:01\02)", false, 0, {}},
    {"commented_out", R"(;"v"=dword:1)", false, 0, {}},
    {"broken_text_does_not_go_on", "\"v\"=\"x\\\r\n\"v\"=dword:5", true, 4, {5, 0, 0, 0}},
};

class SettingLine : public testing::TestWithParam<ValueCase> {};

TEST_P(SettingLine, IsRead)
{
    const TemporaryFolder folder;
    const ScopedVariable variable("RAYLUME_REGISTRY", folder / "r.reg");
    folder.write("r.reg", kHeader + "[HKEY_CURRENT_USER\\Software\\A]\r\n" + GetParam().line + "\r\n");
    const auto key = SettingsKey::openCurrentUser(L"Software\\A");
    ASSERT_NE(key, nullptr);
    const SettingValue value = key->query(L"v", kRoom);
    EXPECT_EQ(value.found, GetParam().found);
    EXPECT_EQ(value.type, GetParam().type);
    EXPECT_EQ(value.bytes, GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(Rows, SettingLine, testing::ValuesIn(kValueCases),
                         [](const auto& row) { return row.param.name; });

TEST_F(UserSettings, AreNothingWithoutAFile)
{
    EXPECT_FALSE(opens(L"Software"));
    EXPECT_FALSE(opens(L""));
}

TEST_F(UserSettings, OpenKeysAboveAndBelow)
{
    writeBody("[HKEY_CURRENT_USER\\Software\\A\\B C]\r\n@=\"x\"\r\n");
    EXPECT_TRUE(opens(L""));
    EXPECT_TRUE(opens(L"Software"));
    EXPECT_TRUE(opens(L"SOFTWARE\\a\\b c"));
    EXPECT_TRUE(opens(L"\\Software\\\\A\\"));
    EXPECT_FALSE(opens(L"Soft"));
    EXPECT_FALSE(opens(L"Software\\A\\B"));
    EXPECT_FALSE(opens(L"Software\\A\\B C\\D"));
    const auto key = SettingsKey::openCurrentUser(L"Software");
    ASSERT_NE(key, nullptr);
    EXPECT_EQ(key->open(L"B C"), nullptr);
    const auto below = key->open(L"A\\B C");
    ASSERT_NE(below, nullptr);
    EXPECT_EQ(platform::settingText(below->query(L"", kRoom)), L"x");
    EXPECT_FALSE(key->open(L"A")->query(L"", kRoom).found);
}

TEST_F(UserSettings, TakeTheCurrentUserOnly)
{
    writeBody("[HKEY_LOCAL_MACHINE\\Software\\A]\r\n\"v\"=dword:1\r\n[Software\\A]\r\n\"v\"=dword:1\r\n");
    EXPECT_FALSE(opens(L"Software"));
    writeBody(
        "[hkey_current_user\\Software\\A]\r\n\"v\"=\"full\"\r\n[HKCU\\Software\\A]\r\n\"w\"=\"short\"\r\n");
    EXPECT_EQ(text(L"v"), L"full");
    EXPECT_EQ(text(L"w"), L"short");
}

TEST_F(UserSettings, JoinSectionsOfOneKey)
{
    writeBody(
        "[HKCU\\Software\\A]\r\n\"v\"=\"1\"\r\n[HKCU\\X]\r\n\"v\"=\"2\"\r\n[HKCU\\software\\a]\r\n\"w\"="
        "\"3\"\r\n");
    EXPECT_EQ(text(L"v"), L"1");
    EXPECT_EQ(text(L"w"), L"3");
}

TEST_F(UserSettings, LoseADeletedKeyWithAllBelow)
{
    writeBody(
        "[HKCU\\Software\\A\\B]\r\n\"v\"=\"1\"\r\n[HKCU\\Software\\AB]\r\n[-HKCU\\Software\\A]\r\n\"v\"="
        "\"2\"\r\n");
    EXPECT_FALSE(opens(L"Software\\A"));
    EXPECT_FALSE(opens(L"Software\\A\\B"));
    EXPECT_TRUE(opens(L"Software\\AB"));
    EXPECT_TRUE(opens(L"Software"));
}

TEST_F(UserSettings, MakeADeletedKeyAgainWithoutItsOldValues)
{
    writeBody(
        "[HKCU\\Software\\A]\r\n\"v\"=\"1\"\r\n[-HKCU\\Software]\r\n[HKCU\\Software\\A]\r\n\"w\"="
        "\"2\"\r\n");
    EXPECT_EQ(text(L"v"), L"<none>");
    EXPECT_EQ(text(L"w"), L"2");
}

TEST_F(UserSettings, KeepTheKeyAboveADeletedOne)
{
    writeBody("[HKCU\\Software\\A]\r\n\"v\"=\"1\"\r\n[-HKCU\\Software\\A\\B]\r\n");
    EXPECT_EQ(text(L"v"), L"1");
}

TEST_F(UserSettings, DropValuesBelowABrokenKeyLine)
{
    writeBody(
        "[HKCU\\Software\\A]\r\n[HKCU\\Software\\B\r\n\"v\"=\"1\"\r\n[HKCU\\Software\\A]x\r\n\"w\"="
        "\"2\"\r\n");
    EXPECT_EQ(text(L"v"), L"<none>");
    EXPECT_EQ(text(L"w"), L"<none>");
}

TEST_F(UserSettings, DropValuesBeforeTheFirstKey)
{
    writeBody("\"v\"=\"1\"\r\n[HKCU\\Software\\A]\r\n");
    EXPECT_EQ(text(L"v"), L"<none>");
}

TEST_F(UserSettings, KeyNamesMayHoldBrackets)
{
    writeBody("[HKCU\\Software\\[x] y]\r\n@=\"1\"\r\n");
    EXPECT_TRUE(opens(L"Software\\[x] y"));
}

TEST_F(UserSettings, ReadEitherLineEndAndALastLineWithoutOne)
{
    write("REGEDIT4\n[HKCU\\Software\\A]\n\"v\"=\"1\"\n\"w\"=\"2\"");
    EXPECT_EQ(text(L"v"), L"1");
    EXPECT_EQ(text(L"w"), L"2");
}

TEST_F(UserSettings, ReadUtf8WithAMark)
{
    write("\xEF\xBB\xBF" + kHeader + "[HKCU\\Software\\A]\r\n\"\xC3\x96\"=\"1\"\r\n");
    EXPECT_EQ(text(L"\u00F6"), L"1");
}

std::string utf16(const std::string& ascii)
{
    std::string bytes = "\xFF\xFE";
    for (const char c : ascii) {
        bytes += {c, '\0'};
    }
    return bytes;
}

TEST_F(UserSettings, ReadUtf16)
{
    write(utf16(kHeader + "[HKCU\\Software\\A]\r\n\"v\"=\"") + "\x3D\xD8\x00\xDE\xF6\x00"s +
          utf16("\"\r\n").substr(2));
    EXPECT_EQ(text(L"v"), L"\U0001F600\u00F6");
}

TEST_F(UserSettings, ReadUtf16CutInTheMiddleOfAUnit)
{
    const std::string bytes = utf16(kHeader + "[HKCU\\Software\\A]\r\n\"v\"=\"1\"\r\n");
    write(bytes + "x");
    EXPECT_EQ(text(L"v"), L"1");
}

TEST_F(UserSettings, OldFormHasNarrowTextInBytes)
{
    const ScopedCodePage page(1252);
    write("REGEDIT4\r\n[HKCU\\Software\\A]\r\n\"v\"=hex(1):e9,62,00\r\n\"w\"=hex:e9\r\n");
    EXPECT_EQ(query(L"v").bytes, (Bytes{0xE9, 0, 'b', 0, 0, 0}));
    EXPECT_EQ(query(L"w").bytes, Bytes{0xE9});
}

TEST_F(UserSettings, QueryFailsForMoreThanTheRoom)
{
    writeBody("[HKCU\\Software\\A]\r\n\"v\"=\"abc\"\r\n\"n\"=dword:1\r\n");
    EXPECT_TRUE(query(L"v", 8).found);
    EXPECT_FALSE(query(L"v", 7).found);
    EXPECT_TRUE(query(L"v", 7).bytes.empty());
    EXPECT_TRUE(query(L"n", 4).found);
    EXPECT_FALSE(query(L"n", 3).found);
}

TEST_F(UserSettings, AreReadOnEachOpen)
{
    writeBody("[HKCU\\Software\\A]\r\n\"v\"=\"1\"\r\n");
    EXPECT_EQ(text(L"v"), L"1");
    writeBody("[HKCU\\Software\\A]\r\n\"v\"=\"2\"\r\n");
    EXPECT_EQ(text(L"v"), L"2");
}

TEST_F(UserSettings, AnOpenKeyOutlivesTheOneThatItCameFrom)
{
    writeBody("[HKCU\\Software\\A]\r\n\"v\"=\"1\"\r\n");
    auto software = SettingsKey::openCurrentUser(L"Software");
    const auto key = software->open(L"A");
    software.reset();
    writeBody("");
    EXPECT_EQ(platform::settingText(key->query(L"v", kRoom)), L"1");
}

TEST_F(UserSettings, AreNothingInAFileThatIsNone)
{
    write("");
    EXPECT_FALSE(opens(L"Software"));
    write(std::string(4096, '\0'));
    EXPECT_FALSE(opens(L"Software"));
    write(std::string(100000, '['));
    EXPECT_FALSE(opens(L"Software"));
}

TEST_F(UserSettings, DoNotWaitForAPipe)
{
    ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
    const ScopedVariable variable("RAYLUME_REGISTRY", folder_ / "pipe");
    EXPECT_FALSE(opens(L"Software"));
}

TEST_F(UserSettings, LieInTheConfigurationFolder)
{
    const ScopedVariable none("RAYLUME_REGISTRY", std::nullopt);
    const ScopedVariable configuration("XDG_CONFIG_HOME", folder_ / "config");
    const ScopedVariable home("HOME", folder_ / "home");
    folder_.makeFolder("config/raylume");
    folder_.makeFolder("home/.config/raylume");
    folder_.write("config/raylume/registry.reg", "[HKCU\\Software\\A]\n\"v\"=\"config\"\n");
    folder_.write("home/.config/raylume/registry.reg", "[HKCU\\Software\\A]\n\"v\"=\"home\"\n");
    EXPECT_EQ(text(L"v"), L"config");
    const ScopedVariable noConfiguration("XDG_CONFIG_HOME", std::nullopt);
    EXPECT_EQ(text(L"v"), L"home");
    const ScopedVariable noHome("HOME", std::nullopt);
    EXPECT_FALSE(opens(L"Software"));
}

struct LocationCase {
    const char* name;
    // Each one below the folder of the test, but for those that are relative or empty.
    const char* registry;
    const char* configuration;
    const char* home;
    const wchar_t* found;
};

const LocationCase kLocationCases[] = {
    {"the_file_that_is_named", "/r.reg", "/config", "/home", L"named"},
    {"an_empty_name_counts_as_unset", "", "/config", "/home", L"config"},
    {"a_missing_file_that_is_named_is_not_made_up_for", "/missing.reg", "/config", "/home", L"<none>"},
    {"a_separator_behind_the_folder", "", "/config//", "/home", L"config"},
    {"a_relative_configuration_folder_counts_as_unset", "", "config", "/home", L"home"},
    {"an_empty_configuration_folder_counts_as_unset", "", "", "/home", L"home"},
    {"a_relative_home_counts_as_unset", "", "", "home", L"<none>"},
    {"an_empty_home_counts_as_unset", "", "", "", L"<none>"},
};

class SettingsLocation : public UserSettings, public testing::WithParamInterface<LocationCase> {
protected:
    // The folder is the current one meanwhile, so that relative paths would lead to files too.
    SettingsLocation() { std::filesystem::current_path(folder_.path()); }
    ~SettingsLocation() override { std::filesystem::current_path(old_); }

    std::string placed(const std::string& path) const
    {
        return path.substr(0, 1) == "/" ? folder_.path() + path : path;
    }

    void writeAt(const std::string& path, const std::string& content) const
    {
        folder_.makeFolder(std::filesystem::path(path).parent_path());
        folder_.write(path, "[HKCU\\Software\\A]\n\"v\"=\"" + content + "\"\n");
    }

private:
    std::filesystem::path old_ = std::filesystem::current_path();
};

TEST_P(SettingsLocation, IsDecidedByTheEnvironment)
{
    writeAt("r.reg", "named");
    writeAt("config/raylume/registry.reg", "config");
    writeAt("home/.config/raylume/registry.reg", "home");
    const ScopedVariable registry("RAYLUME_REGISTRY", placed(GetParam().registry));
    const ScopedVariable configuration("XDG_CONFIG_HOME", placed(GetParam().configuration));
    const ScopedVariable home("HOME", placed(GetParam().home));
    EXPECT_EQ(text(L"v"), GetParam().found);
}

INSTANTIATE_TEST_SUITE_P(Rows, SettingsLocation, testing::ValuesIn(kLocationCases),
                         [](const auto& row) { return row.param.name; });

TEST_F(UserSettings, AreNothingInAFileThatIsTooLarge)
{
    writeBody("[HKCU\\Software\\A]\r\n");
    std::filesystem::resize_file(folder_ / "settings.reg", std::uintmax_t{63} << 20);
    EXPECT_TRUE(opens(L"Software\\A"));
    std::filesystem::resize_file(folder_ / "settings.reg", std::uintmax_t{65} << 20);
    EXPECT_FALSE(opens(L"Software\\A"));
}

TEST_F(UserSettings, ManyPiecesOfOneValueAreFoundInTime)
{
    std::string body = "[HKCU\\Software\\A]\r\n";
    for (int i = 0; i < 20000; ++i) {
        body += "\"v" + std::to_string(i) + "+\"=\"x\"\r\n";
    }
    writeBody(body);
    const auto key = SettingsKey::openCurrentUser(L"Software\\A");
    ASSERT_NE(key, nullptr);
    for (int i = 0; i < 20000; ++i) {
        ASSERT_TRUE(key->query(L"v" + std::to_wstring(i) + L"+", kRoom).found);
    }
}

struct TextCase {
    const char* name;
    Bytes bytes;
    std::wstring text;
};

const TextCase kTextCases[] = {
    {"up_to_the_first_terminator", {'a', 0, 0, 0, 'b', 0}, L"a"},
    {"without_a_terminator", {'a', 0, 'b', 0}, L"ab"},
    {"half_a_unit_at_the_end", {'a', 0, 'b'}, L"a"},
    {"nothing", {}, L""},
    {"a_pair", {0x3D, 0xD8, 0x00, 0xDE, 0, 0}, L"\U0001F600"},
    {"half_a_pair", {0x3D, 0xD8, 'x', 0}, L"\uFFFDx"},
};

class SettingText : public testing::TestWithParam<TextCase> {};

TEST_P(SettingText, IsUtf16)
{
    EXPECT_EQ(platform::settingText({true, platform::kSettingText, GetParam().bytes}), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Rows, SettingText, testing::ValuesIn(kTextCases),
                         [](const auto& row) { return row.param.name; });

const std::string kGoodBody =
    "; exported\r\n[HKEY_CURRENT_USER\\Software\\A]\r\n"
    "\"first\"=\"te\\\\xt\xC3\xB6\"\r\n\"number\"=dword:0000002a\r\n@=\"default\"\r\n"
    "\"bytes\"=hex(1):61,00,\\\r\n  62,00,00,00\r\n\"gone\"=\"x\"\r\n\"gone\"=-\r\n"
    "[HKEY_CURRENT_USER\\Software\\A\\Below]\r\n\"q\\\"\"=hex:\r\n[-HKEY_CURRENT_USER\\Software\\A\\Below]"
    "\r\n";

// All that a reader of settings can ask; no value can be larger than the file that it came from.
void askEverything(std::size_t fileSize)
{
    for (const wchar_t* path : {L"", L"Software", L"Software\\A", L"Software\\A\\Below"}) {
        const auto key = SettingsKey::openCurrentUser(path);
        for (const wchar_t* name : {L"first", L"number", L"", L"bytes", L"gone", L"q\""}) {
            const SettingValue value = key ? key->query(name, kRoom) : SettingValue{};
            ASSERT_LE(value.bytes.size(), 2 * fileSize + 2);
            ASSERT_LE(platform::settingText(value).size(), fileSize);
        }
    }
}

class DamagedSettings : public UserSettings, public testing::WithParamInterface<bool> {
protected:
    static std::string goodFile() { return GetParam() ? utf16(kHeader + kGoodBody) : kHeader + kGoodBody; }
};

TEST_P(DamagedSettings, EveryPrefixIsReadAsFarAsItGoes)
{
    const std::string good = goodFile();
    const std::size_t unit = GetParam() ? 2 : 1;
    const std::size_t mark = GetParam() ? 2 : 0;
    const std::size_t firstEnd = mark + unit * (kHeader + kGoodBody).find("\r\n\"number\"");
    const std::size_t numberEnd = mark + unit * (kHeader + kGoodBody).find("\r\n@=");
    for (std::size_t size = 0; size <= good.size(); ++size) {
        write(good.substr(0, size));
        askEverything(size);
        // In UTF-16 of ASCII bytes the accent is two characters; the number tells the same story.
        ASSERT_EQ(query(L"first").found, size >= firstEnd) << size;
        ASSERT_EQ(query(L"number").bytes == (Bytes{0x2A, 0, 0, 0}), size >= numberEnd) << size;
    }
}

TEST_P(DamagedSettings, EveryFlippedByteIsSurvived)
{
    const std::string good = goodFile();
    for (std::size_t i = 0; i < good.size(); ++i) {
        for (const int mask : {0x01, 0x80}) {
            std::string bad = good;
            bad[i] = static_cast<char>(bad[i] ^ mask);
            write(bad);
            ASSERT_NO_FATAL_FAILURE(askEverything(bad.size())) << i;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, DamagedSettings, testing::Bool(),
                         [](const auto& row) { return row.param ? "utf_16" : "utf_8"; });

}  // namespace
