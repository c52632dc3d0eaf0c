// Every version in both forms of string: cut at every byte, with every byte flipped, with counts and
// lengths that claim too much. The sanitizers see what a wrong access would do.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <fstream>
#include <memory>

#include "raylume/persist/RLData.h"
#include "tests/persist/Archives.h"
#include "tests/persist/StreamBuilder.h"
#include "tests/persist/ViewsFolder.h"

namespace {

using namespace persist_tests;

constexpr int kEndOfFile = 3;

struct VersionCase {
    std::uint32_t version;
    Form form;
};

std::vector<VersionCase> allVersions()
{
    std::vector<VersionCase> all;
    for (std::uint32_t version = 0; version <= 11; ++version) {
        all.push_back({version, Form::kNarrow});
        all.push_back({version, Form::kWide});
    }
    all.push_back({0x80000000u, Form::kWide});
    all.push_back({0xFFFFFFFFu, Form::kNarrow});
    return all;
}

// With views in the first and in the current version that has them. The others have a user without a
// home: a folder costs each read more than all the rest.
class DamagedStream : public testing::TestWithParam<VersionCase> {
protected:
    DamagedStream()
    {
        if (GetParam().version == 6 || GetParam().version == 10) {
            folder_.emplace();
            views_ = std::vector<View>{{"C:\\a.view", "VIEW"}, {"b.view", ""}};
        }
    }

    std::string sample() const { return sampleStream(GetParam().version, GetParam().form, views_).get(); }

private:
    ScopedVariable home_{"HOME", std::nullopt};
    ScopedVariable data_{"XDG_DATA_HOME", std::nullopt};
    std::optional<ViewsFolder> folder_;
    Views views_;
};

// A view that is cut inside its bytes is no failure of its own, but the fields behind it are then.
TEST_P(DamagedStream, CutAnywhereIsCause3WithTheEarlierFieldsSet)
{
    const std::string whole = sample();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        RLData data;
        ASSERT_EQ(causeOf([&] { load(data, whole.substr(0, length)); }), kEndOfFile) << length;
        ASSERT_EQ(data.getStorageVersion(), length < 4 ? 1u : GetParam().version);
        ASSERT_LE(data.getMaskMaterials().size(), 2u);
        if (!data.getMaskMaterials().empty()) {
            ASSERT_EQ(data.getMaskMaterials().front().getMaskName(), "name1");
        }
        if (data.hasSceneData()) {
            ASSERT_EQ(data.getEnvironmentMaterial().getEnvironmentName(), "studio");
            ASSERT_EQ(data.getCameraData()->getTarget(), 7);
        }
    }
    RLData data;
    EXPECT_EQ(load(data, whole), "");
}

TEST_P(DamagedStream, WithAnyByteFlippedIsReadOrIsCause3)
{
    std::string bytes = sample();
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        bytes[at] = static_cast<char>(~bytes[at]);
        RLData data;
        const int cause = causeOf([&] { load(data, bytes); });
        ASSERT_TRUE(cause == 0 || cause == kEndOfFile) << at;
        bytes[at] = static_cast<char>(~bytes[at]);
    }
}

INSTANTIATE_TEST_SUITE_P(Versions, DamagedStream, testing::ValuesIn(allVersions()), [](const auto& row) {
    return "v" + std::to_string(row.param.version) + (row.param.form == Form::kWide ? "_wide" : "_narrow");
});

std::size_t residentBytes()
{
    std::ifstream statm("/proc/self/statm");
    std::size_t pages = 0, resident = 0;
    statm >> pages >> resident;
    return resident * 4096;
}

// The smallest elements that a stream can hold: what they take in memory is bounded by their bytes.
TEST(HostileStream, TakesMemoryForWhatItHoldsAndNotForWhatItClaims)
{
    Bytes bytes(Form::kNarrow);
    bytes.u32(10).u32(0xFFFFFFFF).text("").text("").text("").text("");
    bytes.f32(0).f32(0).f32(0).f32(0).flag(false).u32(0xFFFFFFFF);
    bytes.raw(std::string(1'000'000, '\0'));
    const std::size_t before = residentBytes();
    auto data = std::make_unique<RLData>();
    EXPECT_EQ(causeOf([&] { load(*data, bytes.get()); }), kEndOfFile);
    EXPECT_LT(residentBytes() - std::min(before, residentBytes()), 64 * bytes.size());
}

TEST(HostileStream, WithACountOfAllOnesIsNeitherNoneNorNegative)
{
    Bytes bytes;
    bytes.u32(2).u32(0).text("env").u32(0xFFFFFFFF).u32(5).text("five");
    RLData data;
    EXPECT_EQ(causeOf([&] { load(data, bytes.get()); }), kEndOfFile);
    ASSERT_EQ(data.getEnvironmentMaterial().getStringTags().size(), 1u);
    EXPECT_EQ(data.getEnvironmentMaterial().getStringTags().front().getTag(), "five");
}

// What comes back from a stream that this library stored with one view: the high half of the number is an
// empty name and most of a length.
TEST(HostileStream, OfAStoredViewsBlockReadsAsOneHugeViewWithoutAName)
{
    ViewsFolder views;
    views.write("a.view", "A");
    RLCameraData camera;
    const std::string bytes = stored(camera);
    const std::size_t block = 9 * 4;
    EXPECT_EQ(bytes.substr(block, 12), std::string("\1\0\0\0\0\0\0\0\xFF\xFE\xFF", 11) + bytes[block + 11]);
    RLCameraData read;
    EXPECT_EQ(causeOf([&] { load(read, bytes); }), kEndOfFile);
    EXPECT_EQ(read.getProjType(), -1);
    EXPECT_EQ(readFile(views / "a.view"), "A");
}

}  // namespace
