#include <gtest/gtest.h>

#include <list>
#include <string>

#include "raylume/services/AppearanceLists.h"
#include "raylume/services/IgnoredImages.h"
#include "tests/platform/FailingAllocations.h"
#include "tests/services/TextureMachine.h"

namespace {

class TextureSearchAllocations : public testing::Test {
protected:
    // With each allocation of the call failing in turn.
    template <class Call>
    static void failEach(Call call)
    {
        long successes = 0;
        failing_allocations::Outcome outcome;
        do {
            outcome = failing_allocations::callWithFailure(successes, call);
            ASSERT_FALSE(outcome.isWrong) << successes;
            ++successes;
        } while (outcome.failed);
        EXPECT_GT(successes, 5);
    }

    TextureMachine machine_;
};

TEST_F(TextureSearchAllocations, LeaveARightAnswerOrAFailure)
{
    machine_.add("c:/maps/A long name of an image.png");
    machine_.write("c:/docs/__ImageLocations__.txt",
                   "any\tC:\\a folder that is not there\nCUSTOM_DECAL_FOLDERS\tC:\\none;C:\\MAPS\n");
    failEach([] {
        return rlu_getTextureFilename(L"C:\\gone\\A long name of an image.png", "C:\\docs\\",
                                      TextureImageDecal, L"") == "C:\\MAPS\\A long name of an image.png";
    });
}

TEST_F(TextureSearchAllocations, LeaveTheObserverInPlace)
{
    const ObservedSearches observed;
    failEach([] {
        return rlu_getTextureFilename(L"C:\\gone\\x.png", "C:\\docs\\", TextureImageDecal, L"") ==
               "C:\\gone\\x.png";
    });
    const std::size_t before = observed.all.size();
    EXPECT_GT(before, 0u);
    rlu_getTextureFilename(L"C:\\gone\\x.png", "C:\\docs\\", TextureImageDecal, L"");
    EXPECT_EQ(observed.all.size(), before + 1);
}

TEST_F(TextureSearchAllocations, LeaveACompleteListOrABeginning)
{
    machine_.write("c:/docs/__IgnoredImages__.txt", "A long name of an image.png\nb.png\n");
    const std::list<std::wstring> all = {L"a long name of an image.png", L"b.png"};
    failEach([&all] {
        rlu_PopulateIgnoredMissingImagesList("C:\\docs\\");
        return g_ignoredImages == all;
    });
    EXPECT_EQ(g_ignoredImages, all);
    machine_.write("c:/docs/__ImageLocations__.txt", "DEFAULT_COLOR\t7\n");
    failEach([] { return rlu_GetDefaultAppearanceCol(L"C:\\docs\\") == 7; });
    g_ignoredImages.clear();
}

}  // namespace
