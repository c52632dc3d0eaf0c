#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "raylume/services/Locations.h"
#include "raylume/services/Registry.h"
#include "tests/memory_platform/MemoryPlatform.h"

using memory_platform::machine;
using Texts = std::vector<std::wstring>;
using Sizes = std::vector<std::size_t>;

namespace {

const std::wstring kHost = L"Software\\Orvane\\Orvane 2013";

class HostRegistry : public testing::Test {
protected:
    HostRegistry() { memory_platform::reset(); }
    ~HostRegistry() override { EXPECT_EQ(machine().openKeys, 0); }

    int read(const std::wstring& section, const std::wstring& name, RegistryValueKind kind, int skip = 0)
    {
        return readHostRegistryValue(section, name, kind, text_, number_, real_, skip);
    }

    void expectUntouched() const
    {
        EXPECT_EQ(text_, L"before");
        EXPECT_EQ(number_, -7);
        EXPECT_EQ(real_, 0.125);
    }

    std::wstring text_ = L"before";
    std::int32_t number_ = -7;
    double real_ = 0.125;
};

TEST_F(HostRegistry, OpensSoftwareThenTheHostThenTheSection)
{
    machine().addText(kHost + L"\\S", L"v", L"x");
    EXPECT_EQ(read(L"S", L"v", kRegistryText), 1);
    EXPECT_EQ(machine().keyOpens,
              (Texts{L"Software", L"software\\Orvane\\Orvane 2013", L"software\\orvane\\orvane 2013\\S"}));
    EXPECT_EQ(text_, L"x");
}

TEST_F(HostRegistry, OpensTheHostAloneForAnEmptySection)
{
    machine().addText(kHost, L"v", L"x");
    EXPECT_EQ(read(L"", L"v", kRegistryText), 1);
    EXPECT_EQ(machine().keyOpens, (Texts{L"Software", L"software\\Orvane\\Orvane 2013"}));
}

TEST_F(HostRegistry, OpensNothingWhenItIsToldToSkip)
{
    machine().addText(kHost, L"v", L"x");
    EXPECT_EQ(read(L"", L"v", kRegistryText, 1), 0);
    EXPECT_EQ(read(L"", L"v", kRegistryText, -1), 0);
    EXPECT_TRUE(machine().keyOpens.empty());
    expectUntouched();
}

TEST_F(HostRegistry, GivesNothingWhenAnyKeyIsMissing)
{
    EXPECT_EQ(read(L"S", L"v", kRegistryText), 0);
    machine().addKey(L"Software");
    EXPECT_EQ(read(L"S", L"v", kRegistryText), 0);
    machine().addKey(kHost);
    EXPECT_EQ(read(L"S", L"v", kRegistryText), 0);
    EXPECT_TRUE(machine().queries.empty());
    expectUntouched();
}

TEST_F(HostRegistry, AsksWithTheRoomOfEachKind)
{
    machine().addKey(kHost);
    for (const RegistryValueKind kind : {0, 1, 3, -1}) {
        EXPECT_EQ(read(L"", L"v", kind), 0);
    }
    EXPECT_EQ(machine().queryBuffers, (Sizes{4, 0x100, 0x100, 0x100}));
    machine().queryBuffers.clear();
    machine().queries.clear();
    EXPECT_EQ(read(L"", L"v", kRegistryText), 0);
    EXPECT_EQ(machine().queryBuffers, (Sizes{0x800, 0x800}));
    EXPECT_EQ(machine().queries, (Texts{L"v", L"v0+"}));
    expectUntouched();
}

TEST_F(HostRegistry, LooksForNoPiecesBehindAValueOfAnotherType)
{
    machine().addNumber(kHost, L"v", 5);
    machine().addText(kHost, L"v0+", L"piece");
    EXPECT_EQ(read(L"", L"v", kRegistryText), 0);
    EXPECT_EQ(machine().queries, Texts{L"v"});
    expectUntouched();
}

TEST_F(HostRegistry, StopsAtTheFirstPieceThatFails)
{
    machine().addText(kHost, L"v0+", L"a");
    machine().addText(kHost, L"v1+", L"b");
    machine().addNumber(kHost, L"v2+", 1);
    machine().addText(kHost, L"v3+", L"d");
    EXPECT_EQ(read(L"", L"v", kRegistryText), 1);
    EXPECT_EQ(text_, L"beforeab");
    EXPECT_EQ(machine().queries, (Texts{L"v", L"v0+", L"v1+", L"v2+"}));
}

TEST_F(HostRegistry, CountsPiecesBeyondNine)
{
    for (int i = 0; i < 12; ++i) {
        machine().addText(kHost, L"v" + std::to_wstring(i) + L"+",
                          std::wstring(1, static_cast<wchar_t>(L'a' + i)));
    }
    EXPECT_EQ(read(L"", L"v", kRegistryText), 1);
    EXPECT_EQ(text_, L"beforeabcdefghijkl");
}

TEST_F(HostRegistry, RepairSwitchIsReadFromItsSection)
{
    machine().addNumber(kHost + L"\\Raylume", L"Repair Custom Appearance", 1);
    EXPECT_TRUE(rlu_useDefaultShaderForCorruptR2M());
    EXPECT_EQ(machine().queries, Texts{L"Repair Custom Appearance"});
    EXPECT_EQ(machine().queryBuffers, Sizes{4});
}

}  // namespace
