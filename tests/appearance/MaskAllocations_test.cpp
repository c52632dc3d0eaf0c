// Masks and decals with memory that runs out at any place.
#include <gmock/gmock.h>

#include <cstddef>
#include <cstdint>
#include <list>
#include <string>
#include <vector>

#include "raylume/appearance/DecalTranslation.h"
#include "raylume/appearance/FaceIndex.h"
#include "raylume/appearance/MaskImages.h"
#include "raylume/load/ReaderInterface.h"
#include "raylume/scene/dlDecal.h"
#include "raylume/scene/dlInstance.h"
#include "raylume/scene/dlPart.h"
#include "tests/appearance/PartBuilder.h"
#include "tests/appearance/ScriptedImages.h"
#include "tests/platform/FailingAllocations.h"
#include "tests/recording_reader/RecordingReader.h"
#include "tests/scene/CountingDecal.h"

namespace {

using failing_allocations::callWithFailure;
using maskimages::Cache;
using maskimages::ColorsRecord;
using maskimages::FileRecord;
using scripted::images;
using testing::ElementsAre;

// Longer than what a text holds without an allocation.
const std::wstring kFolder = L"a temporary folder";

class Allocations : public testing::Test {
protected:
    Allocations() { reset(); }
    ~Allocations() override { reset(); }

    static void reset()
    {
        recording::Recorder::get().reset();
        scripted::reset(kFolder);
    }
};

template <class Record>
class MaskCache : public testing::Test {
};

ColorsRecord recordOf(int number, const ColorsRecord&)
{
    return {L"image " + std::to_wstring(number), {1, 2}, L"result " + std::to_wstring(number)};
}

FileRecord recordOf(int number, const FileRecord&)
{
    return {L"image " + std::to_wstring(number), L"the mask", true, L"result " + std::to_wstring(number)};
}

template <class Record>
void expectEachUnderItsKey(const Cache<Record>& cache)
{
    for (const Record& record : cache.records())
        EXPECT_EQ(cache.find(record), &record) << record.resultFile.c_str();
}

using Records = testing::Types<ColorsRecord, FileRecord>;
TYPED_TEST_SUITE(MaskCache, Records);

// A copy has no room to spare, so its array moves with the next record.
TYPED_TEST(MaskCache, stays_as_it_was_when_memory_runs_out)
{
    Cache<TypeParam> cache;
    for (int count = 0; count < 5; ++count) {
        const TypeParam next = recordOf(count, TypeParam());
        long successes = 0;
        for (bool failed = true; failed; ++successes) {
            Cache<TypeParam> copy = cache;
            failed = callWithFailure(successes, [&] {
                         copy.add(next);
                         return true;
                     }).failed;
            EXPECT_EQ(copy.find(next) == nullptr, failed) << successes;
            EXPECT_EQ(copy.records().size(), static_cast<std::size_t>(failed ? count : count + 1));
            expectEachUnderItsKey(copy);
        }
        EXPECT_GT(successes, 3);
        cache.add(next);
    }
}

class MaskAllocations : public Allocations {
protected:
    // A decal of an image that no mask was made of before: one blue pixel and one red.
    void prepare(dlDecal& decal, const std::string& test, long number)
    {
        image_ = std::wstring(test.begin(), test.end()) + std::to_wstring(number);
        images().pictures[image_] = {1, 2, 1, {255, 0, 0, 9, 0, 0, 255, 9}};
        decal.texture.filename = image_;
    }

    // The call fails at each place, and is made again. Gives how often it was made.
    template <class Make>
    long failEach(const std::string& test, Make make)
    {
        long successes = 0;
        for (bool failed = true; failed; ++successes) {
            dlDecal decal;
            prepare(decal, test, successes);
            failed = callWithFailure(successes, [&] {
                         make(decal);
                         return true;
                     }).failed;
            if (failed) {
                EXPECT_EQ(decal.texture.filename, image_) << successes;
                make(decal);
            }
            expectMade(decal);
            scripted::images().lines.clear();
        }
        return successes;
    }

    static void expectMade(const dlDecal& decal)
    {
        EXPECT_EQ(decal.texture.filename, kFolder + L"\\" + std::to_wstring(images().saveNumber) + L".bmp");
        ASSERT_FALSE(images().saved.empty());
        EXPECT_THAT(images().saved.back().pixels, ElementsAre(255, 0, 0, 255, 0, 0, 255, 0));
    }

private:
    std::wstring image_;
};

TEST_F(MaskAllocations, of_colours_leave_a_decal_that_can_be_made_again)
{
    const long calls = failEach("an image with colours", [](dlDecal& decal) {
        decal.colorMask = {0xFF};
        decal.generateNewImageUsingMaskColors(L"C:\\a folder\\");
    });
    EXPECT_GT(calls, 20);
    ASSERT_EQ(maskImageCacheColors.records().size(), static_cast<std::size_t>(calls));
    expectEachUnderItsKey(maskImageCacheColors);
}

TEST_F(MaskAllocations, of_many_colours_leave_a_decal_that_can_be_made_again)
{
    const long calls = failEach("an image with many colours", [](dlDecal& decal) {
        decal.colorMask = {1, 2, 3, 4, 5, 0xFF};
        decal.generateNewImageUsingMaskColors(L"C:\\a folder\\");
    });
    EXPECT_GT(calls, 20);
    expectEachUnderItsKey(maskImageCacheColors);
}

// The mask has another size, so that places are worked out.
TEST_F(MaskAllocations, of_a_file_leave_a_decal_that_can_be_made_again)
{
    images().pictures[L"the mask"] = {1, 4, 1, {255, 0, 0, 0, 9, 0, 0, 0, 0, 0, 0, 0, 9, 0, 0, 0}};
    const long calls = failEach("an image with a mask", [](dlDecal& decal) {
        decal.generateNewImageUsingMaskFile(L"C:\\a folder\\", L"the mask", false);
    });
    EXPECT_GT(calls, 20);
    ASSERT_EQ(maskImageCacheFiles.records().size(), static_cast<std::size_t>(calls));
    expectEachUnderItsKey(maskImageCacheFiles);
}

template <class Holder>
void expectNoOwnerUntilHung()
{
    std::vector<std::string> deleted;
    auto* decal = new CountingDecal(deleted, "decal");
    {
        Holder holder;
        EXPECT_TRUE(callWithFailure(0, [&] {
                        holder.addDecal(decal);
                        return true;
                    }).failed);
        EXPECT_TRUE(holder.getDecalList().empty());
        EXPECT_FALSE(callWithFailure(1, [&] {
                         holder.addDecal(decal);
                         return true;
                     }).failed);
        EXPECT_THAT(holder.getDecalList(), ElementsAre(decal));
        EXPECT_TRUE(deleted.empty());
    }
    EXPECT_THAT(deleted, ElementsAre("decal"));
}

TEST_F(Allocations, that_fail_leave_a_decal_to_whoever_hangs_it)
{
    expectNoOwnerUntilHung<dlFace>();
    expectNoOwnerUntilHung<dlInstance>();
}

// One decal with a mask on two faces, for a part and for a component.
struct Document {
    Document()
    {
        decal.textureProperties.filename = L"an image of a document";
        decal.materialProperties.idName = L"the name of the material";
        decal.colorMask = {1, 2};
        for (const std::int32_t face : {5, 6}) {
            decal.faceMappings.emplace_back();
            decal.faceMappings.back().faceId = face;
        }
        component.decals = {&decal};
        tessData.decalsByConfig[0] = {&decal};
    }

    uoDecalProperties decal;
    uoTempAssemblySHDData_c component;
    uoTempPartTessData_c tessData;
};

struct Scene {
    Scene() { fillBodies(part, {{5, 6}}); }

    std::size_t decalsOfFaces()
    {
        dlFace* faces = part.bodies[0].faces;
        return faces[0].getDecalList().size() + faces[1].getDecalList().size();
    }

    dlPart part;
    dlInstance instance;
};

class DecalAllocations : public Allocations {
protected:
    // Every block has gone with the scene, and none twice. What is cached was so before.
    template <class Attach>
    void failEach(Attach attach)
    {
        attachTo(attach, -1);
        long successes = 0;
        for (bool failed = true; failed; ++successes) {
            const long before = failing_allocations::blocks();
            failed = attachTo(attach, successes);
            ASSERT_EQ(failing_allocations::blocks(), before) << successes;
        }
        EXPECT_GT(successes, 40);
    }

private:
    // Without a failure when `successes` is below 0. Gives whether one occurred.
    template <class Attach>
    bool attachTo(Attach attach, long successes)
    {
        failing_allocations::Outcome outcome;
        {
            Scene scene;
            outcome = callWithFailure(successes, [&] { return attach(document_, scene) == 2; });
            EXPECT_FALSE(outcome.isWrong) << successes;
        }
        reset();
        return outcome.failed;
    }

    Document document_;
};

TEST_F(DecalAllocations, of_a_part_neither_leak_nor_delete_twice)
{
    failEach([](Document& document, Scene& scene) {
        attachPartDecals(document.tessData, &scene.part, L"C:\\folder\\a.part", 0);
        return scene.decalsOfFaces();
    });
}

TEST_F(DecalAllocations, of_an_instance_neither_leak_nor_delete_twice)
{
    failEach([](Document& document, Scene& scene) {
        attachInstanceDecals(document.component, &scene.instance, &scene.part, L"C:\\folder\\a.asm");
        return scene.instance.getDecalList().size();
    });
}

TEST_F(DecalAllocations, without_an_instance_neither_leak_nor_delete_twice)
{
    failEach([](Document& document, Scene& scene) {
        attachInstanceDecals(document.component, nullptr, &scene.part, L"C:\\folder\\a.asm");
        return scene.decalsOfFaces();
    });
}

TEST_F(Allocations, are_not_needed_to_find_the_index_of_a_part_again)
{
    dlPart part;
    fillBodies(part, {{1, 2}, {3}});
    FaceIndices indices;
    const FaceIndex* const index = &indices.of(part);
    failing_allocations::start(0);
    const FaceIndex* const again = &indices.of(part);
    EXPECT_FALSE(failing_allocations::stop());
    EXPECT_EQ(again, index);
}

}  // namespace
