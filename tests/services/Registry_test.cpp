#include "raylume/services/Registry.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdint>
#include <string>

#include "raylume/platform/UserSettings.h"
#include "raylume/services/Locations.h"
#include "tests/platform/ScopedEnvironment.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

const std::string kHost = "[HKEY_CURRENT_USER\\Software\\Orvane\\Orvane 2013]\r\n";
const std::string kSection = "[HKEY_CURRENT_USER\\Software\\Orvane\\Orvane 2013\\ExtReferences]\r\n";
const std::string kRaylume = "[HKEY_CURRENT_USER\\Software\\Orvane\\Orvane 2013\\Raylume]\r\n";

class Registry : public testing::Test {
protected:
    void write(const std::string& body) const
    {
        folder_.write("settings.reg", "Windows Registry Editor Version 5.00\r\n\r\n" + body);
    }

    int read(const std::wstring& section, const std::wstring& name, RegistryValueKind kind, int skip = 0)
    {
        return readHostRegistryValue(section, name, kind, text_, number_, real_, skip);
    }

    int readIn(const std::string& lines, RegistryValueKind kind)
    {
        write(kSection + lines);
        return read(L"ExtReferences", L"v", kind);
    }

    TemporaryFolder folder_;
    ScopedVariable variable_{"RAYLUME_REGISTRY", folder_ / "settings.reg"};
    std::wstring text_ = L"before";
    std::int32_t number_ = -7;
    double real_ = 0.125;
};

std::string quoted(const std::string& name, const std::string& text)
{
    return "\"" + name + "\"=\"" + text + "\"\r\n";
}

TEST_F(Registry, ReadsTheExtraAppearanceFolders)
{
    write(kSection + quoted("Custom Apperance Folders", "C:\\\\a;C:\\\\b"));
    EXPECT_EQ(read(L"ExtReferences", L"Custom Apperance Folders", kRegistryText), 1);
    EXPECT_EQ(text_, L"C:\\a;C:\\b");
}

TEST_F(Registry, ReadsDirectlyUnderTheHostForAnEmptySection)
{
    write(kHost + quoted("v", "host") + kSection + quoted("v", "section"));
    EXPECT_EQ(read(L"", L"v", kRegistryText), 1);
    EXPECT_EQ(text_, L"host");
}

TEST_F(Registry, LooksAtOneReleaseOfTheHostOnly)
{
    write("[HKEY_CURRENT_USER\\Software\\Orvane\\Orvane 2014]\r\n" + quoted("v", "x"));
    EXPECT_EQ(read(L"", L"v", kRegistryText), 0);
    EXPECT_EQ(text_, L"before");
}

TEST_F(Registry, SkipsWhenItIsTold)
{
    write(kHost + quoted("v", "x"));
    EXPECT_EQ(read(L"", L"v", kRegistryText, 1), 0);
    EXPECT_EQ(text_, L"before");
}

TEST_F(Registry, GivesNothingWithoutAFile)
{
    EXPECT_EQ(read(L"", L"v", kRegistryText), 0);
    EXPECT_EQ(read(L"", L"v", kRegistryNumber), 0);
    EXPECT_EQ(read(L"", L"v", kRegistryReal), 0);
    EXPECT_EQ(text_, L"before");
}

TEST_F(Registry, ReadsNumbersOfTheirTypeOnly)
{
    EXPECT_EQ(readIn("\"v\"=dword:80000001\r\n", kRegistryNumber), 1);
    EXPECT_EQ(number_, INT32_MIN + 1);
    number_ = -7;
    EXPECT_EQ(readIn(quoted("v", "1"), kRegistryNumber), 0);
    EXPECT_EQ(readIn("\"v\"=hex:01,00,00,00\r\n", kRegistryNumber), 0);
    EXPECT_EQ(readIn("\"v\"=hex(4):01,00,00,00,00\r\n", kRegistryNumber), 0);
    EXPECT_EQ(readIn(quoted("w", "1"), kRegistryNumber), 0);
    EXPECT_EQ(number_, -7);
}

TEST_F(Registry, AssignsATextInOnePiece)
{
    EXPECT_EQ(readIn(quoted("v", "new") + quoted("v0+", "piece"), kRegistryText), 1);
    EXPECT_EQ(text_, L"new");
    EXPECT_EQ(readIn(quoted("v", ""), kRegistryText), 1);
    EXPECT_EQ(text_, L"");
}

TEST_F(Registry, EndsATextAtItsTerminator)
{
    EXPECT_EQ(readIn("\"v\"=hex(1):61,00,00,00,62,00,00,00\r\n", kRegistryText), 1);
    EXPECT_EQ(text_, L"a");
}

TEST_F(Registry, FitsTextOf1023CharactersWithItsTerminator)
{
    EXPECT_EQ(readIn(quoted("v", std::string(1023, 'a')) + quoted("v0+", "piece"), kRegistryText), 1);
    EXPECT_EQ(text_, std::wstring(1023, L'a'));
}

TEST_F(Registry, FallsBackToPiecesForTextOf1024Characters)
{
    text_.clear();
    EXPECT_EQ(readIn(quoted("v", std::string(1024, 'a')), kRegistryText), 0);
    EXPECT_EQ(text_, L"");
    EXPECT_EQ(readIn(quoted("v", std::string(1024, 'a')) + quoted("v0+", "piece"), kRegistryText), 1);
    EXPECT_EQ(text_, L"piece");
}

TEST_F(Registry, AppendsPiecesToWhatTheDestinationHeld)
{
    EXPECT_EQ(readIn(quoted("v0+", "a") + quoted("v1+", "b") + quoted("v3+", "d"), kRegistryText), 1);
    EXPECT_EQ(text_, L"beforeab");
}

TEST_F(Registry, TakesNoPiecesWithoutTheFirst)
{
    EXPECT_EQ(readIn(quoted("v1+", "b") + quoted("v 0+", "x") + quoted("v0", "y"), kRegistryText), 0);
    EXPECT_EQ(text_, L"before");
}

TEST_F(Registry, LimitsEachPieceToo)
{
    const std::string whole(1023, 'a');
    EXPECT_EQ(readIn(quoted("v0+", whole) + quoted("v1+", whole + "a") + quoted("v2+", "c"), kRegistryText),
              1);
    EXPECT_EQ(text_, L"before" + std::wstring(1023, L'a'));
}

TEST_F(Registry, TakesNoPiecesForAValueOfAnotherType)
{
    EXPECT_EQ(readIn("\"v\"=dword:00000001\r\n" + quoted("v0+", "piece"), kRegistryText), 0);
    EXPECT_EQ(readIn("\"v\"=hex(2):61,00,00,00\r\n" + quoted("v0+", "piece"), kRegistryText), 0);
    EXPECT_EQ(text_, L"before");
}

class RegistryReal : public Registry, public testing::WithParamInterface<RegistryValueKind> {};

TEST_P(RegistryReal, ScansTheText)
{
    EXPECT_EQ(readIn(quoted("v", " 2.5e1mm"), GetParam()), 1);
    EXPECT_EQ(real_, 25.0);
    EXPECT_EQ(text_, L"before");
    EXPECT_EQ(number_, -7);
}

TEST_P(RegistryReal, CountsATextThatIsNoNumberAsRead)
{
    EXPECT_EQ(readIn(quoted("v", "none"), GetParam()), 1);
    EXPECT_EQ(real_, 0.125);
}

TEST_P(RegistryReal, RefusesOtherTypesAndMissingValues)
{
    EXPECT_EQ(readIn("\"v\"=dword:00000001\r\n", GetParam()), 0);
    EXPECT_EQ(readIn(quoted("v0+", "1"), GetParam()), 0);
    EXPECT_EQ(real_, 0.125);
}

TEST_P(RegistryReal, FitsTextOf127CharactersWithItsTerminator)
{
    EXPECT_EQ(readIn(quoted("v", "5" + std::string(126, ' ')), GetParam()), 1);
    EXPECT_EQ(real_, 5.0);
    EXPECT_EQ(readIn(quoted("v", "6" + std::string(127, ' ')), GetParam()), 0);
    EXPECT_EQ(real_, 5.0);
}

TEST_P(RegistryReal, LeavesTheLocaleAlone)
{
    const std::string before = std::setlocale(LC_ALL, nullptr);
    ASSERT_STREQ(std::setlocale(LC_ALL, "C.UTF-8"), "C.UTF-8");
    EXPECT_EQ(readIn(quoted("v", "0.5"), GetParam()), 1);
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C.UTF-8");
    std::setlocale(LC_ALL, before.c_str());
}

INSTANTIATE_TEST_SUITE_P(Kinds, RegistryReal, testing::Values(1, 3, -1), [](const auto& row) {
    return row.param < 0 ? "negative" : "kind_" + std::to_string(row.param);
});

TEST_F(Registry, ReadsWithAnOpenKeyToo)
{
    write(kSection + "\"n\"=dword:00000005\r\n");
    const auto key =
        platform::SettingsKey::openCurrentUser(L"Software\\Orvane\\Orvane 2013\\ExtReferences");
    ASSERT_NE(key, nullptr);
    EXPECT_EQ(readRegistryValue(*key, L"n", kRegistryNumber, text_, number_, real_), 1);
    EXPECT_EQ(number_, 5);
}

struct SwitchCase {
    const char* name;
    const char* data;
    bool on;
};

const SwitchCase kSwitchCases[] = {
    {"one", "dword:00000001", true},
    {"largest", "dword:7fffffff", true},
    {"zero", "dword:00000000", false},
    {"negative", "dword:ffffffff", false},
    {"most_negative", "dword:80000000", false},
    {"text", "\"1\"", false},
    {"bytes", "hex:01,00,00,00", false},
    {"deleted", "-", false},
};

class RepairSwitch : public testing::TestWithParam<SwitchCase> {};

TEST_P(RepairSwitch, IsOnAboveZero)
{
    const TemporaryFolder folder;
    const ScopedVariable variable("RAYLUME_REGISTRY", folder / "settings.reg");
    folder.write("settings.reg", kRaylume + "\"Repair Custom Appearance\"=" + GetParam().data + "\r\n");
    EXPECT_EQ(rlu_useDefaultShaderForCorruptR2M(), GetParam().on);
}

INSTANTIATE_TEST_SUITE_P(Rows, RepairSwitch, testing::ValuesIn(kSwitchCases),
                         [](const auto& row) { return row.param.name; });

TEST_F(Registry, RepairSwitchIsOffWithoutAFileAndReadAnew)
{
    EXPECT_FALSE(rlu_useDefaultShaderForCorruptR2M());
    write(kRaylume + "\"Repair Custom Appearance\"=dword:00000001\r\n");
    EXPECT_TRUE(rlu_useDefaultShaderForCorruptR2M());
    write(kRaylume + "\"Repair Custom Appearance\"=dword:00000000\r\n");
    EXPECT_FALSE(rlu_useDefaultShaderForCorruptR2M());
}

}  // namespace
