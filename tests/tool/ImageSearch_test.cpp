#include "tools/ImageSearch.h"

#include <gmock/gmock.h>

#include "Folder.h"
#include "raylume/platform/Environment.h"
#include "raylume/platform/Text.h"
#include "tests/platform/ScopedEnvironment.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using tool::BakedDecals;
using tool::ImageSearch;
using tool::ImageStatus;
using tool::LoadSearch;
using tool_test::Folder;

std::wstring wide(const std::string& text)
{
    return platform::fromUtf8(text);
}

LoadSearch decalSearch(const std::wstring& stored, const std::string& next, bool found = true)
{
    LoadSearch search;
    search.record.storedPath = stored;
    search.record.type = TextureImageDecal;
    search.record.found = found;
    if (found)
        search.record.path = L"\\here\\" + stored;
    search.record.probes = {{TextureSearchStep::kStoredPath, stored, false}};
    search.record.probeCount = 1;
    search.nextBitmap = next;
    return search;
}

/// Bitmaps that were made or not, in a folder of their own.
class Bitmaps {
public:
    std::string made(int number) const
    {
        tool_test::writeFile(path(number), "BM");
        return path(number);
    }
    std::string path(int number) const { return folder_ / (std::to_string(number) + ".bmp"); }

private:
    Folder folder_;
};

TEST(BakedDecals, come_from_the_last_search_before_their_bitmap_appeared)
{
    const Bitmaps bitmaps;
    const std::string one = bitmaps.made(1), two = bitmaps.made(2);
    // The second search is of what was baked before, and made no bitmap.
    const BakedDecals baked({decalSearch(L"a", one), decalSearch(L"a", two), decalSearch(L"b", two)});
    EXPECT_THAT(baked.originsOf(one, false).images, ElementsAre(0u));
    EXPECT_THAT(baked.originsOf(two, false).images, ElementsAre(2u));
    EXPECT_THAT(baked.originsOf(two, false).masks, IsEmpty());
    EXPECT_TRUE(baked.knows(two));
    EXPECT_FALSE(baked.knows(bitmaps.path(3)));
}

TEST(BakedDecals, with_mask_images_come_from_two_searches)
{
    const Bitmaps bitmaps;
    const std::string one = bitmaps.made(1);
    const BakedDecals baked({decalSearch(L"a", one), decalSearch(L"m", one)});
    EXPECT_THAT(baked.originsOf(one, true).images, ElementsAre(0u));
    EXPECT_THAT(baked.originsOf(one, true).masks, ElementsAre(1u));
}

TEST(BakedDecals, whose_images_are_missing_share_the_bitmap_of_the_next)
{
    const Bitmaps bitmaps;
    const std::string one = bitmaps.made(1);
    const BakedDecals baked(
        {decalSearch(L"gone", one, false), decalSearch(L"lost", one, false), decalSearch(L"good", one)});
    EXPECT_THAT(baked.originsOf(one, false).images, ElementsAre(0u, 1u, 2u));
    const std::string never = bitmaps.path(2);
    const BakedDecals alone({decalSearch(L"gone", never, false)});
    EXPECT_THAT(alone.originsOf(never, false).images, ElementsAre(0u));
}

TEST(BakedDecals, of_one_image_with_two_masks_both_know_it)
{
    const Bitmaps bitmaps;
    const std::string one = bitmaps.made(1), two = bitmaps.made(2);
    const BakedDecals baked({decalSearch(L"a", one), decalSearch(L"a", two)});
    EXPECT_THAT(baked.originsOf(two, false).images, ElementsAre(1u));
}

TEST(ImageSearch, tells_what_a_baked_decal_was_made_of)
{
    const Bitmaps bitmaps;
    ImageSearch images("/docs/a.gltf", {decalSearch(L"logo.png", bitmaps.made(1))});
    dlDecal decal;
    decal.texture.filename = wide(bitmaps.path(1));
    decal.colorMask = {255};
    const tool::DecalImages made = images.ofDecal(decal);
    EXPECT_TRUE(made.isBaked);
    ASSERT_EQ(made.images.size(), 1u);
    EXPECT_EQ(made.images[0]->storedPath, L"logo.png");
    EXPECT_EQ(made.images[0]->status, ImageStatus::kFound);
    EXPECT_THAT(made.images[0]->bakedAs, ElementsAre(bitmaps.path(1)));
    EXPECT_THAT(images.others(), IsEmpty());
}

TEST(ImageSearch, searches_for_decals_without_masks_itself)
{
    const Folder folder;
    tool_test::writeFile(folder / "logo.png", "x");
    ImageSearch images(folder / "a.gltf", {});
    dlDecal decal;
    decal.texture.filename = L"C:\\gone\\logo.png";
    const tool::DecalImages made = images.ofDecal(decal);
    EXPECT_FALSE(made.isBaked);
    ASSERT_EQ(made.images.size(), 1u);
    EXPECT_EQ(made.images[0]->type, TextureImageDecal);
    EXPECT_EQ(made.images[0]->status, ImageStatus::kFound);
}

TEST(ImageSearch, lists_what_only_the_load_looked_for)
{
    ImageSearch images("/docs/a.gltf", {decalSearch(L"a", "", false), decalSearch(L"a", "", false)});
    const auto others = images.others();
    ASSERT_EQ(others.size(), 1u);
    EXPECT_EQ(others[0]->status, ImageStatus::kMissing);
    EXPECT_THAT(images.others(), IsEmpty());
}

TEST(ImageSearch, takes_scene_images_from_the_load)
{
    LoadSearch found = decalSearch(L"sky.hdr", "");
    found.record.type = TextureImageScene;
    LoadSearch missing = decalSearch(L"wall.png", "", false);
    missing.record.type = TextureImageScene;
    ImageSearch images("/docs/a.gltf", {found, missing});
    EXPECT_EQ(images.ofScene("\\here\\sky.hdr").storedPath, L"sky.hdr");
    EXPECT_EQ(images.ofScene("wall.png").status, ImageStatus::kMissing);
    EXPECT_EQ(images.ofScene("wall.png").probeCount, 1u);
}

TEST(ImageSearch, splits_stored_paths_at_slashes_too)
{
    const Folder folder;
    tool_test::writeFile(folder / "wood.png", "x");
    ImageSearch images(folder / "a.gltf", {});
    const auto& image = images.find(L"/gone/textures/wood.png", TextureImageAppearance);
    EXPECT_EQ(image.storedPath, L"/gone/textures/wood.png");
    EXPECT_EQ(image.status, ImageStatus::kFound);
    EXPECT_EQ(image.probes.back().step, TextureSearchStep::kSearchFolder);
    EXPECT_EQ(&images.find(L"/gone/textures/wood.png", TextureImageAppearance), &image) << "once";
}

TEST(ImageSearch, knows_the_default_decal)
{
    const Folder folder;
    tool_test::writeFile(folder / "logo.pdf", "x");
    ImageSearch images(folder / "a.gltf", {});
    EXPECT_TRUE(images.find(L"C:\\gone\\logo.pdf", TextureImageDecal).isDefaultDecal);
    EXPECT_FALSE(images.find(L"C:\\gone\\logo.pdf", TextureImageAppearance).isDefaultDecal);
}

TEST(ImageSearch, leaves_the_observer_as_it_was)
{
    int seen = 0;
    const auto before = rlu_observeTextureSearches([&seen](const TextureSearchRecord&) { ++seen; });
    ImageSearch images;
    images.find(L"none.png", TextureImageDecal);
    rlu_getTextureFilename(L"none.png", "", TextureImageDecal, {});
    rlu_observeTextureSearches(before);
    EXPECT_EQ(seen, 1);
}

// ---------------------------------------------------------------------------------------- journal

TEST(SearchJournal, has_the_bitmap_that_would_have_come_next)
{
    const Folder folder;
    const ScopedVariable temp("temp", folder.path());
    const std::string own = folder / ("rlx" + std::to_string(platform::processId()));
    tool::SearchJournal journal;
    rlu_getTextureFilename(L"a.png", "", TextureImageDecal, {});
    std::filesystem::create_directory(own);
    tool_test::writeFile(own + "/1.bmp", "BM");
    rlu_getTextureFilename(L"b.png", "", TextureImageDecal, {});
    rlu_getTextureFilename(L"c.png", "", TextureImageScene, {});
    const auto searches = journal.take();
    ASSERT_EQ(searches.size(), 3u);
    EXPECT_EQ(searches[0].nextBitmap, own + "/1.bmp");
    EXPECT_EQ(searches[1].nextBitmap, own + "/2.bmp");
    EXPECT_EQ(searches[1].record.storedPath, L"b.png");
    EXPECT_EQ(searches[2].nextBitmap, "");
}

TEST(SearchJournal, counts_on_from_what_another_left)
{
    const Folder folder;
    const ScopedVariable temp("temp", folder.path());
    const std::string own = folder / ("rlx" + std::to_string(platform::processId()));
    std::filesystem::create_directory(own);
    for (const char* name : {"/7.BMP", "/9.bmp", "/abc.bmp", "/12.png"})
        tool_test::writeFile(own + name, "BM");
    EXPECT_EQ(tool::BitmapNumbers().next(), own + "/10.bmp");
}

TEST(SearchJournal, ends_with_its_scope)
{
    {
        const tool::SearchJournal journal;
    }
    const auto after = rlu_observeTextureSearches({});
    EXPECT_FALSE(after);
}

TEST(EmbeddedImages, are_numbered)
{
    EXPECT_TRUE(tool::isEmbeddedImage(L"a.glb#image0"));
    EXPECT_FALSE(tool::isEmbeddedImage(L"a.glb#image"));
    EXPECT_FALSE(tool::isEmbeddedImage(L"a.glb#image0.png"));
}

}  // namespace
