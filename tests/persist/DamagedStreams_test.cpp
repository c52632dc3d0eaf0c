// Every version in both forms of string: cut at every byte, with every byte flipped, with counts and
// lengths that claim too much. The sanitizers see what a wrong access would do.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <fstream>
#include <list>
#include <memory>
#include <sstream>

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

// All fields of a record, as texts, in the order of the stream. An element of a list is one field: it is
// there or it is not.
using Fields = std::vector<std::string>;

template <class... Values>
std::string joined(const Values&... values)
{
    std::ostringstream text;
    text.precision(9);
    ((text << values << "|"), ...);
    return text.str();
}

template <class... Values>
void addEach(Fields& fields, const Values&... values)
{
    (fields.push_back(joined(values)), ...);
}

void addTags(Fields& fields, const std::list<RLStringTag>& tags, std::size_t most)
{
    fields.push_back(joined(tags.size() > most));
    auto tag = tags.begin();
    for (std::size_t i = 0; i < most; ++i) {
        fields.push_back(tag == tags.end() ? "none" : joined(tag->tagID, tag->tag));
        tag = tag == tags.end() ? tag : std::next(tag);
    }
}

std::string fieldOf(const RLMaskMaterial& mask)
{
    std::string text = joined(mask.maskName, mask.maskType, mask.maskPTag, mask.materialName,
                              mask.diffuseColor[0], mask.diffuseColor[1], mask.diffuseColor[2],
                              mask.diffuseColor[3], mask.materialAtRoot, mask.advMaterialIsSet);
    for (const RLFloatChannel& channel : mask.floatChannels)
        text += joined(channel.channelName, channel.floatVal);
    for (const RLStringTag& tag : mask.stringTags)
        text += joined(tag.tagID, tag.tag);
    return text;
}

void addMasks(Fields& fields, const std::list<RLMaskMaterial>& masks)
{
    fields.push_back(joined(masks.size() > 2));
    fields.push_back(masks.empty() ? "none" : fieldOf(masks.front()));
    fields.push_back(masks.size() < 2 ? "none" : fieldOf(*std::next(masks.begin())));
}

void addEnvironmentFields(Fields& fields, const RLEnvironmentMaterial& environment)
{
    addEach(fields, environment.environmentName);
    addTags(fields, environment.stringTags, 2);
    addEach(fields, environment.whiteLevel, environment.clamp, environment.gamma, environment.bloom,
            environment.bloomThr, environment.bloomRad, environment.toneAmt);
}

void addCameraFields(Fields& fields, const RLCameraData& camera)
{
    for (const float* const values : {camera.rotation, camera.translation})
        addEach(fields, values[0], values[1], values[2]);
    addEach(fields, camera.target, camera.focalLength, camera.projType, camera.focusDist, camera.fStop,
            camera.frameWidth, camera.frameHeight, camera.RDOF, camera.previewRenderQuality,
            camera.fullRenderQuality, camera.imageFormat);
}

void addSceneFields(Fields& fields, const RLSceneData& scene)
{
    addEach(fields, scene.environmentImage, scene.envVisibility, scene.backPlateImage, scene.bkplVisibility,
            scene.floor, scene.floorFlip, scene.floorVisibility, scene.floorType);
}

// A camera or a scene that is not there has the fields of a new one.
Fields fieldsOf(const RLData& data)
{
    Fields fields;
    addEach(fields, data.storageVersion);
    addMasks(fields, data.maskMaterials);
    addEnvironmentFields(fields, data.environmentMaterial);
    addEach(fields, data.hasCameraData());
    addCameraFields(fields, data.cameraData ? *data.cameraData : RLCameraData());
    addEach(fields, data.hasSceneData());
    addSceneFields(fields, data.sceneData ? *data.sceneData : RLSceneData());
    return fields;
}

// How many fields of a half-read record are set. Each one is a default or whole, and the set ones come
// first; fields that the stream leaves at their default do not tell.
void countSetFields(const Fields& seen, const Fields& defaults, const Fields& full, std::size_t& count)
{
    count = 0;
    bool ended = false;
    ASSERT_EQ(seen.size(), full.size());
    for (std::size_t i = 0; i < full.size(); ++i) {
        ASSERT_TRUE(seen[i] == defaults[i] || seen[i] == full[i]) << i << " " << seen[i];
        if (defaults[i] == full[i])
            continue;
        const bool isSet = seen[i] == full[i];
        ASSERT_FALSE(isSet && ended) << "field " << i << " is set, one ahead of it is not";
        ended = !isSet;
        count += isSet ? 1u : 0u;
    }
}

// A view that is cut inside its bytes is no failure of its own, but the fields behind it are then. Each
// field takes at least a byte, so that they become set one by one.
TEST_P(DamagedStream, CutAnywhereIsCause3WithTheEarlierFieldsSet)
{
    const std::string whole = sample();
    const Fields defaults = fieldsOf(RLData());
    RLData read;
    ASSERT_EQ(load(read, whole), "");
    const Fields full = fieldsOf(read);
    std::size_t before = 0;
    for (std::size_t length = 0; length < whole.size(); ++length) {
        SCOPED_TRACE(length);
        RLData data;
        ASSERT_EQ(causeOf([&] { load(data, whole.substr(0, length)); }), kEndOfFile);
        std::size_t count = 0;
        ASSERT_NO_FATAL_FAILURE(countSetFields(fieldsOf(data), defaults, full, count));
        ASSERT_EQ(data.getStorageVersion(), length < 4 ? 1u : GetParam().version);
        ASSERT_TRUE(count == before || count == before + 1) << before << " " << count;
        before = count;
    }
    std::size_t all = 0;
    ASSERT_NO_FATAL_FAILURE(countSetFields(full, defaults, full, all));
    EXPECT_GE(all, GetParam().version >= 10 ? 38u : 3u);
    EXPECT_GE(before + 1, all);
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
