// Images inside of documents, by the names that textures have for them.
#include "reader/EmbeddedImages.h"

#include <gtest/gtest.h>

#include "raylume/platform/Text.h"
#include "tests/gltf/GltfBuilder.h"
#include "tests/platform/TemporaryFolder.h"

namespace gltf_tests {
namespace {

std::string imageOf(const TemporaryFolder& folder, const std::string& name)
{
    const auto bytes = ovdl::embeddedImage(folder.wide() + L"/" + platform::fromUtf8(name));
    return {bytes.begin(), bytes.end()};
}

GltfBuilder withImages()
{
    GltfBuilder builder;
    builder.addNode({{"mesh", builder.triangleMesh()}});
    const std::size_t triangle = builder.json["bufferViews"].size();
    builder.json["images"] = {{{"uri", "data:image/png;base64,UE5H"}},
                              {{"bufferView", triangle - 1}, {"mimeType", "image/png"}},
                              {{"uri", "beside.png"}}};
    return builder;
}

TEST(EmbeddedImages, ComeFromDataUrisAndBufferViews)
{
    const TemporaryFolder folder;
    const GltfBuilder builder = withImages();
    folder.write("a.glb", builder.glb());
    EXPECT_EQ(imageOf(folder, "a.glb#image0"), "PNG");
    const Json& view = builder.json["bufferViews"].back();
    EXPECT_EQ(imageOf(folder, "a.glb#image1").size(), view["byteLength"].get<std::size_t>());
}

TEST(EmbeddedImages, AreNoneForOtherNames)
{
    const TemporaryFolder folder;
    folder.write("a.glb", withImages().glb());
    folder.write("broken.glb", "glTF and no more");
    for (const char* name :
         {"a.glb#image2", "a.glb#image3", "a.glb#image", "a.glb#image-1", "a.glb#image1x",
          "a.glb#image99999999999999999999", "a.glb", "b.glb#image0", "broken.glb#image0", "#image0", ""})
        EXPECT_EQ(imageOf(folder, name), "") << name;
}

}  // namespace
}  // namespace gltf_tests
