// Images in exported files: textures and decals, what the Khronos validator says of them, and what they
// are when they are loaded again.
#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <numbers>
#include <sstream>

#include "Documents.h"
#include "Folder.h"
#include "Pictures.h"
#include "Process.h"
#include "TexturedDocument.h"
#include "raylume/platform/Text.h"
#include "raylume/scene/dlDecal.h"
#include "raylume/services/ImageCodec.h"
#include "tests/platform/ScopedEnvironment.h"
#include "tools/GltfExport.h"
#include "tools/Loading.h"

namespace {

using nlohmann::json;
using tool_test::band;
using tool_test::bmpFile;
using tool_test::DocumentBuilder;
using tool_test::Folder;
using tool_test::pngFile;
using tool_test::Prepared;
using tool_test::textured;

/// One export of a document, with images searched as the tool does.
class Exported {
public:
    explicit Exported(const std::string& document, const std::string& output = "o.glb")
        : path_(folder_ / output)
    {
        before = tool::loadDocument({document, "", nullptr});
        if (!before.model)
            throw std::runtime_error(before.reason);
        tool::ImageSearch images(document, before.searches);
        const tool::GltfDocument made = tool::exportModel(*before.model, images, [] { return false; });
        notes = made.notes;
        std::ofstream file(path_, std::ios::binary);
        tool::writeGlb(made, file);
        file.close();
        EXPECT_EQ(std::filesystem::file_size(path_), tool::glbSize(made));
        content = json::parse(made.json);
        binary_ = tool_test::readFile(path_).substr(28 + (made.json.size() + 3) / 4 * 4);
    }

    void expectValid() const
    {
        tool_test::Program program;
        program.command = {RAYLUME_NODE, RAYLUME_VALIDATOR, path_};
        const tool_test::Finished finished = tool_test::run(program);
        EXPECT_EQ(finished.exitStatus, 0) << finished.out << finished.err;
    }

    std::unique_ptr<dlModel> again() const
    {
        auto loaded = tool::loadDocument({path_, "", nullptr});
        if (loaded.outcome != tool::Outcome::kModel)
            throw std::runtime_error(loaded.reason);
        return std::move(loaded.model);
    }

    /// The bytes of an image.
    std::string image(std::size_t index) const
    {
        const json& view =
            content["bufferViews"][content["images"][index]["bufferView"].get<std::size_t>()];
        EXPECT_FALSE(view.contains("target"));
        EXPECT_EQ(view["byteOffset"].get<std::size_t>() % 4, 0u);
        return binary_.substr(view["byteOffset"], view["byteLength"]);
    }

    const json& primitive(std::size_t mesh, std::size_t index) const
    {
        return content["meshes"][mesh]["primitives"][index];
    }
    const json& materialOf(const json& primitive) const
    {
        return content["materials"][primitive["material"].get<std::size_t>()];
    }

    tool::LoadedDocument before;
    tool::ExportNotes notes;
    json content;

private:
    Folder folder_;
    std::string path_;
    std::string binary_;
};

const dlTexture& textureOf(const dlModel& model, int instance)
{
    return model.instances[instance].part->bodies[0].faces[0].material->texture;
}

void expectSamePlacement(const dlTexture& a, const dlTexture& b)
{
    EXPECT_EQ(a.mappingType, b.mappingType);
    EXPECT_EQ(a.scaleU, b.scaleU);
    EXPECT_EQ(a.scaleV, b.scaleV);
    EXPECT_EQ(a.angle, b.angle);
    EXPECT_EQ(a.transU, b.transU);
    EXPECT_EQ(a.transV, b.transV);
}

// --------------------------------------------------------------------------------------- textures

const char* const kTransforms[] = {
    R"(null)",
    R"({"scale": [2, 3]})",
    R"({"scale": [0.3, -1.7]})",
    R"({"rotation": 0.5})",
    R"({"rotation": -2.25, "offset": [0.1, -0.7]})",
    R"({"rotation": 6.283185307179586})",
    R"({"rotation": 1e-9})",
    R"({"offset": [12.5, 0]})",
};

TEST(ExportedTextures, come_back_with_the_same_placement_to_the_bit)
{
    const Folder folder;
    tool_test::writeFile(folder / "wood.png", pngFile(5, 3));
    json materials;
    for (const char* transform : kTransforms)
        materials.push_back(textured(0, json::parse(transform)));
    const Exported exported(tool_test::writeTextured(folder / "a", {"wood.png"}, materials));
    exported.expectValid();
    const auto after = exported.again();
    ASSERT_EQ(after->instanceCount, static_cast<int>(materials.size()));
    for (int i = 0; i < after->instanceCount; ++i) {
        SCOPED_TRACE(kTransforms[i]);
        expectSamePlacement(textureOf(*exported.before.model, i), textureOf(*after, i));
        EXPECT_TRUE(textureOf(*after, i).filename.ends_with(L"#image0"));
    }
    EXPECT_EQ(exported.content["images"].size(), 1u) << "each image once";
    EXPECT_EQ(exported.content["textures"].size(), 1u);
}

TEST(ExportedTextures, as_they_lie_need_no_extension)
{
    const Folder folder;
    tool_test::writeFile(folder / "wood.png", pngFile(5, 3));
    const Exported exported(
        tool_test::writeTextured(folder / "a", {"wood.png"}, json::array({textured(0)})));
    EXPECT_FALSE(exported.content.contains("extensionsUsed"));
    EXPECT_EQ(exported.materialOf(exported.primitive(0, 0))["pbrMetallicRoughness"]["baseColorTexture"],
              json::parse(R"({"index": 0})"));
    EXPECT_EQ(exported.content["samplers"], json::parse(R"([{"wrapS": 10497, "wrapT": 10497}])"));
}

TEST(ExportedTextures, are_the_bytes_of_their_files_where_the_format_has_them)
{
    const Folder folder;
    const std::string png = pngFile(5, 3);
    tool_test::writeFile(folder / "wood.png", png);
    tool_test::writeFile(folder / "brick.bmp", bmpFile(6, 4));
    const Exported exported(
        tool_test::writeTextured(folder / "a", {"wood.png", "brick.bmp"}, {textured(0), textured(1)}));
    exported.expectValid();
    ASSERT_EQ(exported.content["images"].size(), 2u);
    EXPECT_EQ(exported.image(0), png);
    EXPECT_EQ(exported.image(1).substr(0, 4), "\x89PNG");
    EXPECT_EQ(exported.content["images"][1]["mimeType"], "image/png");
}

TEST(ExportedTextures, that_are_not_there_are_left_out_and_counted_once)
{
    const Folder folder;
    tool_test::writeFile(folder / "bad.png", "x");
    const Exported exported(tool_test::writeTextured(folder / "a", {"gone.png", "bad.png"},
                                                     {textured(0), textured(0), textured(1)}));
    exported.expectValid();
    EXPECT_FALSE(exported.content.contains("images"));
    EXPECT_FALSE(exported.content.contains("samplers"));
    EXPECT_EQ(exported.notes.imagesMissing, 1);
    EXPECT_EQ(exported.notes.imagesUnreadable, 1);
}

TEST(ExportedTextures, of_an_exported_file_lie_in_it_and_are_counted)
{
    const Folder folder;
    tool_test::writeFile(folder / "wood.png", pngFile(5, 3));
    const Exported first(tool_test::writeTextured(folder / "a", {"wood.png"}, {textured(0), textured(0)}));
    const Exported second(
        tool_test::writeTextured(folder / "b", {"data:image/png;base64,AA=="}, json::array({textured(0)})));
    EXPECT_EQ(first.notes.imagesEmbedded, 0);
    EXPECT_EQ(second.notes.imagesEmbedded, 1);
    EXPECT_FALSE(second.content.contains("images"));
}

TEST(ExportedTextures, need_texture_coordinates)
{
    const Folder folder;
    tool_test::writeFile(folder / "wood.png", pngFile(5, 3));
    const Exported exported(
        tool_test::writeTextured(folder / "a", {"wood.png"}, json::array({textured(0)}), false));
    exported.expectValid();
    EXPECT_FALSE(exported.content.contains("images"));
    EXPECT_EQ(exported.notes.texturesWithoutPlace, 1);
}

// ----------------------------------------------------------------------------------------- decals

/// A folder for temporary files of the test's own, emptied with the test.
class OwnBitmaps {
public:
    OwnBitmaps() = default;
    OwnBitmaps(const OwnBitmaps&) = delete;
    OwnBitmaps& operator=(const OwnBitmaps&) = delete;
    ~OwnBitmaps() { rlu_ClearTempBMPFiles(); }

private:
    Folder folder_;
    ScopedVariable temp_{"temp", folder_.path()};
};

// An image of 1 by 1 on the face of that id.
uoDecalProperties* decalOf(DocumentBuilder& builder, const std::string& image, std::int32_t faceId = 7)
{
    auto* decal = builder.document().own<uoDecalProperties>();
    decal->textureProperties.filename = platform::fromUtf8(image);
    decal->textureProperties.hasDirections = true;
    decal->textureProperties.directions[0][0] = 1;
    decal->textureProperties.directions[1][1] = 1;
    decal->textureProperties.scale[0] = decal->textureProperties.scale[1] = 1;
    decal->mappingKind = 2;
    decal->faceMappings.emplace_back();
    decal->faceMappings.back().faceId = faceId;
    return decal;
}

uoTempPartTessData_c* partWithFace(DocumentBuilder& builder, std::int32_t faceId = 7)
{
    auto* face = builder.face({band(4)});
    face->faceId = faceId;
    return builder.part({builder.body({face})});
}

struct Position {
    double low[3];
    double high[3];
};

Position boundsOf(const json& content, const json& primitive)
{
    const json& accessor = content["accessors"][primitive["attributes"]["POSITION"].get<std::size_t>()];
    Position result;
    for (std::size_t i = 0; i < 3; ++i) {
        result.low[i] = accessor["min"][i];
        result.high[i] = accessor["max"][i];
    }
    return result;
}

TEST(ExportedDecals, of_faces_lie_on_them_with_the_baked_image)
{
    const OwnBitmaps bitmaps;
    const Folder folder;
    tool_test::writeFile(folder / "logo.bmp", bmpFile(4, 4, 0, 0, 255));
    const Prepared document("/prepared/decal.prt", [&](DocumentBuilder& builder) {
        auto* part = partWithFace(builder);
        auto* decal = decalOf(builder, folder / "logo.bmp");
        decal->colorMask = {0x0000FF};
        part->decalsByConfig[0] = {decal};
        builder.partDocument(part);
    });
    const Exported exported(document.path());
    exported.expectValid();
    ASSERT_EQ(exported.content["meshes"][0]["primitives"].size(), 2u);
    const json& decal = exported.primitive(0, 1);
    const json& material = exported.materialOf(decal);
    EXPECT_EQ(material["alphaMode"], "BLEND");
    EXPECT_EQ(material["pbrMetallicRoughness"]["baseColorFactor"], json({1.0, 1.0, 1.0, 1.0}))
        << "the decal's own colour, which nobody sets, is red";
    EXPECT_EQ(exported.content["samplers"][0]["wrapS"], 33071);
    const Position bounds = boundsOf(exported.content, decal);
    EXPECT_NEAR(bounds.low[0], 0, 1e-6);
    EXPECT_NEAR(bounds.high[0], 1, 1e-6) << "the face goes on to 2, the image ends at 1";
    EXPECT_GT(bounds.low[2], 0) << "above the face";
    EXPECT_LT(bounds.high[2], 0.01);
    // All of it was cut out.
    tool_test::writeFile(folder / "baked.png", exported.image(0));
    int width = 0, height = 0, stride = 0;
    unsigned char* pixels = nullptr;
    ASSERT_EQ(rlu_GetBitmapDataFromFile(platform::fromUtf8(folder / "baked.png"), width, height, stride,
                                        &pixels, 0, nullptr, nullptr),
              1);
    EXPECT_EQ(width, 4);
    EXPECT_EQ(pixels[2], 255);
    EXPECT_EQ(pixels[3], 0);
    delete[] pixels;
    EXPECT_EQ(exported.again()->instances[0].part->bodies[0].faceCount, 2);
}

TEST(ExportedDecals, of_instances_lie_on_the_face_of_their_id_above_those_of_the_face)
{
    const OwnBitmaps bitmaps;
    const Folder folder;
    const std::string png = pngFile(3, 3);
    tool_test::writeFile(folder / "logo.png", png);
    const Prepared document("/prepared/decal.asm", [&](DocumentBuilder& builder) {
        auto* part = partWithFace(builder);
        part->decalsByConfig[0] = {decalOf(builder, folder / "logo.png")};
        auto* bare = builder.component(L"a-1@t", part);
        auto* first = builder.component(L"a-2@t", part);
        auto* second = builder.component(L"a-3@t", part);
        first->decals = {decalOf(builder, folder / "logo.png")};
        second->decals = {decalOf(builder, folder / "logo.png")};
        builder.assembly({bare, first, second});
    });
    const Exported exported(document.path());
    exported.expectValid();
    ASSERT_EQ(exported.content["meshes"].size(), 2u) << "instances with the same decals share a mesh";
    EXPECT_EQ(exported.content["meshes"][0]["primitives"].size(), 2u);
    ASSERT_EQ(exported.content["meshes"][1]["primitives"].size(), 3u);
    EXPECT_EQ(exported.primitive(0, 1), exported.primitive(1, 1));
    EXPECT_GT(boundsOf(exported.content, exported.primitive(1, 2)).low[2],
              boundsOf(exported.content, exported.primitive(1, 1)).low[2]);
    ASSERT_EQ(exported.content["images"].size(), 1u);
    EXPECT_EQ(exported.image(0), png);
}

TEST(ExportedDecals, that_cannot_be_shown_are_counted)
{
    const OwnBitmaps bitmaps;
    const Folder folder;
    tool_test::writeFile(folder / "logo.png", pngFile(3, 3));
    const Prepared document("/prepared/odd.prt", [&](DocumentBuilder& builder) {
        auto* part = partWithFace(builder);
        auto* missing = decalOf(builder, folder / "gone.png");
        auto* unmapped = decalOf(builder, folder / "logo.png");
        unmapped->mappingKind = 9;
        auto* beside = decalOf(builder, folder / "logo.png");
        beside->origin[0] = 50;
        auto* lostMask = decalOf(builder, folder / "lost.png");
        lostMask->colorMask = {1};
        part->decalsByConfig[0] = {missing, unmapped, beside, lostMask};
        builder.partDocument(part);
    });
    const Exported exported(document.path());
    exported.expectValid();
    EXPECT_EQ(exported.content["meshes"][0]["primitives"].size(), 1u);
    EXPECT_EQ(exported.notes.imagesMissing, 2);
    EXPECT_EQ(exported.notes.decalsWithoutPlace, 1);
    EXPECT_EQ(exported.notes.decalsBesideFaces, 1);
}

TEST(ExportedTextures, of_instances_lie_over_faces_with_and_without_coordinates)
{
    const Folder folder;
    tool_test::writeFile(folder / "wood.png", pngFile(3, 3));
    const Prepared document("/prepared/mixed.asm", [&](DocumentBuilder& builder) {
        auto* part = builder.part(
            {builder.body({builder.face({band(1)}), builder.face({band(1, 1)}, {0, 0, 1, 0, 0, 1})})});
        auto* component = builder.component(L"a-1@t", part);
        component->vizProps = builder.look(0x00FFFFFF);
        auto* texture = builder.document().own<uoMaterialTextureProperties>();
        texture->scale[0] = texture->scale[1] = 1;
        texture->filename = platform::fromUtf8(folder / "wood.png");
        auto* render = builder.document().own<uoRVAppearanceProperties>();
        render->mappingType = 2;
        component->vizProps->materialProps->textureProperties = texture;
        component->vizProps->materialProps->rvAppearance = render;
        builder.assembly({component});
    });
    const Exported exported(document.path());
    exported.expectValid();
    const auto show = [&](std::size_t i) {
        return exported.materialOf(exported.primitive(0, i))["pbrMetallicRoughness"].contains(
            "baseColorTexture");
    };
    EXPECT_FALSE(show(0));
    EXPECT_TRUE(show(1));
}

}  // namespace
