// Decals of whole documents: placed, their images found by each road, their masks baked into files.
#include <gmock/gmock.h>

#include <cstdint>
#include <list>
#include <memory>
#include <numbers>
#include <string>
#include <tuple>
#include <vector>

#include "raylume/scene/dlBody.h"
#include "raylume/scene/dlDecal.h"
#include "raylume/scene/dlFace.h"
#include "raylume/scene/dlInstance.h"
#include "raylume/scene/dlModel.h"
#include "raylume/scene/dlPart.h"
#include "raylume/services/ImageCodec.h"
#include "tests/appearance/Drawing.h"
#include "tests/platform/ScopedEnvironment.h"
#include "tests/platform/TemporaryFolder.h"
#include "tests/reader/ReaderFixtures.h"

namespace {

using fixtures::Prepared;
using ovdl::PreparedDocument;
using testing::ElementsAre;

constexpr wchar_t kPartPath[] = L"C:\\docs\\Labelled.part";
constexpr wchar_t kAssemblyPath[] = L"C:\\docs\\Labelled.asm";
constexpr char kPartHostPath[] = "C:\\docs\\Labelled.part";
constexpr char kAssemblyHostPath[] = "C:\\docs\\Labelled.asm";

constexpr std::uint32_t kRed = 0x0000FF;
constexpr std::uint32_t kGreen = 0x00FF00;
constexpr std::uint32_t kBlue = 0xFF0000;
constexpr std::uint32_t kWhite = 0xFFFFFF;
constexpr std::uint32_t kMixed = 0x563412;

// Drives, data folder and temporary folder. They last as long as the process, since the library remembers
// its data folder and the masks it has made that long.
class Machine {
public:
    Machine()
    {
        folder_.makeFolder("temp");
        add("drives/c:/docs", "beside.bmp", kGreen);
        add("app/Data/images/textures/decals", "data.bmp", kBlue);
        add("drives/c:/maps", "first.bmp", kWhite);
        add("drives/c:/decals", "listed.bmp", kMixed);
        folder_.write("drives/c:/docs/mask.bmp", bitmapOf({1, 2, {0x282828, 0xC8C8C8}}));
        folder_.write("drives/c:/docs/__ImageLocations__.txt",
                      "any\tC:\\maps\r\nCUSTOM_DECAL_FOLDERS\tC:\\none;C:\\decals\r\n");
    }

private:
    // The upper pixel is red; the lower one tells the image from the others.
    void add(const std::string& folder, const std::string& name, std::uint32_t colour) const
    {
        folder_.makeFolder(folder);
        folder_.write(folder + "/" + name, bitmapOf({1, 2, {kRed, colour}}));
    }

    TemporaryFolder folder_;
    ScopedVariable drives_{"RAYLUME_DRIVES", folder_ / "drives"};
    ScopedVariable host_{"RAYLUME_HOST", folder_ / "app/bin/host"};
    ScopedVariable temp_{"temp", folder_ / "temp"};
};

enum class Mask { kNone, kColour, kFile, kInvertedFile };

struct DecalCase {
    const char* name;
    int kind;
    const wchar_t* image;
    Mask mask = Mask::kNone;
    int mirrored = 0;
    float recordTransU = 7;

    std::uint32_t mappingType;
    float scaleU = 0.25f;
    int degrees = 90;
    std::vector<float> trans = {0.25f, 0.5f};
    std::vector<float> centre = {99.6875f, -0.375f};
    float textureTransU = 7;
    std::vector<std::uint32_t> pixels = {};  // alpha on top; none: the stored path stays
};

// The document turns all images by 270 degrees, moves them by 0.25 and 0.5, and has sizes of 4 and 8 for
// them; the records say 180 degrees, 2 and 3.
const std::vector<DecalCase> kDecals = {
    {.name = "kind_0_beside_the_document_with_a_colour_cut_out",
     .kind = 0,
     .image = L"Q:\\gone\\beside.bmp",
     .mask = Mask::kColour,
     .mappingType = 2,
     .degrees = 180,
     .trans = {2, 3},
     .centre = {99.625f, -0.5625f},
     .pixels = {kRed, 0xFF000000 | kGreen}},
    {.name = "kind_0_with_a_mark",
     .kind = 0,
     .image = L"Q:\\gone\\beside.bmp",
     .recordTransU = 1002.5f,
     .mappingType = 2,
     .scaleU = -0.25f,
     .degrees = 270,
     .trans = {-0.25f, 0.5f},
     .centre = {99.8125f, -0.625f},
     .textureTransU = 2.5f},
    {.name = "kind_1_mirrored_in_the_data_folder_with_a_colour_cut_out",
     .kind = 1,
     .image = L"Q:\\gone\\data.bmp",
     .mask = Mask::kColour,
     .mirrored = -1,
     .mappingType = 4,
     .scaleU = -0.25f,
     .centre = {98.6875f, 1.625f},
     .pixels = {kRed, 0xFF000000 | kBlue}},
    {.name = "kind_2_mirrored_by_the_first_line_with_a_mask",
     .kind = 2,
     .image = L"Q:\\gone\\first.bmp",
     .mask = Mask::kFile,
     .mirrored = 1,
     .mappingType = 6,
     .scaleU = -0.25f,
     .pixels = {0x28000000 | kRed, 0xC8000000 | kWhite}},
    {.name = "kind_3_by_the_list_for_decals_with_an_inverted_mask",
     .kind = 3,
     .image = L"Q:\\gone\\listed.bmp",
     .mask = Mask::kInvertedFile,
     .mappingType = 5,
     .pixels = {0xD7000000 | kRed, 0x37000000 | kMixed}},
    {.name = "kind_4_without_a_mask",
     .kind = 4,
     .image = L"Q:\\gone\\beside.bmp",
     .recordTransU = 1002.5f,
     .mappingType = 3,
     .textureTransU = 1002.5f},
    {.name = "an_unknown_kind",
     .kind = 9,
     .image = L"Q:\\gone\\beside.bmp",
     .mirrored = 1,
     .mappingType = 1,
     .scaleU = 0,
     .degrees = 0,
     .trans = {0, 0},
     .centre = {0, 0}},
};

int faceOf(std::size_t decal)
{
    return 10 + static_cast<int>(decal);
}

void setMask(uoDecalProperties& decal, Mask mask)
{
    if (mask == Mask::kColour)
        decal.colorMask = {kRed};
    if (mask == Mask::kFile || mask == Mask::kInvertedFile)
        decal.maskFileName = L"C:\\docs\\mask.bmp";
    decal.maskInvert = mask == Mask::kInvertedFile;
}

void setImage(uoMaterialTextureProperties& image, const wchar_t* filename)
{
    image.filename = filename;
    image.angle = 270;
    image.transX = 0.25;
    image.transY = 0.5;
    image.scale[0] = 4;
    image.scale[1] = 8;
    image.hasDirections = true;
    image.directions[0][0] = 1;
    image.directions[1][1] = 1;
}

uoDecalProperties* decalOf(PreparedDocument& document, std::size_t index)
{
    const DecalCase& row = kDecals[index];
    auto* decal = document.own<uoDecalProperties>();
    decal->decalId = 100 + static_cast<int>(index);
    decal->mappingKind = static_cast<std::uint8_t>(row.kind);
    decal->mappingScalar = 1.5f;
    decal->origin[0] = 100;
    decal->projectionOffsetU = 1;
    decal->projectionOffsetV = 2;
    decal->useUnderlyingAppearance = 5;
    decal->materialProperties.idName = L"label";
    setImage(decal->textureProperties, row.image);
    setMask(*decal, row.mask);
    uoDecalFaceMapping mapping;
    mapping.faceId = faceOf(index);
    mapping.transU = row.recordTransU;
    mapping.angle = 180;
    mapping.transX = 2;
    mapping.transY = 3;
    mapping.mirrored = row.mirrored;
    decal->faceMappings = {mapping};
    return decal;
}

std::list<uoDecalProperties*> decalsOf(PreparedDocument& document)
{
    std::list<uoDecalProperties*> decals;
    for (std::size_t index = 0; index < kDecals.size(); ++index)
        decals.push_back(decalOf(document, index));
    return decals;
}

// A face for each decal.
uoTempPartTessData_c* tessellation(PreparedDocument& document)
{
    auto* tess = fixtures::triangle(document, 1.0f);
    const uoTempFaceTessData_c& first = *tess->bodies.at(0)->faces.at(0);
    std::vector<uoTempFaceTessData_c*> faces;
    for (std::size_t index = 0; index < kDecals.size(); ++index) {
        faces.push_back(document.own<uoTempFaceTessData_c>(first));
        faces.back()->faceId = faceOf(index);
    }
    tess->bodies.at(0)->faces = document.array<uoTempFaceTessData_c>(faces);
    tess->decalsByConfig[0] = decalsOf(document);
    return tess;
}

std::unique_ptr<PreparedDocument> labelledPart()
{
    auto document = fixtures::emptyPart();
    document->part->tessData = tessellation(*document);
    return document;
}

// The component has the decals of its part once more.
std::unique_ptr<PreparedDocument> labelledAssembly()
{
    auto document = fixtures::emptyAssembly();
    auto* component = fixtures::component(*document, L"Bolt-1@Labelled", tessellation(*document), 0.0);
    component->decals = decalsOf(*document);
    document->assembly->components = document->array<uoTempAssemblySHDData_c>({component});
    return document;
}

// A picture as a host sees it, alpha on top.
std::vector<std::uint32_t> pixelsOf(const std::wstring& path)
{
    int width = 0;
    int height = 0;
    int stride = 0;
    unsigned char* bytes = nullptr;
    if (rlu_GetBitmapDataFromFile(path, width, height, stride, &bytes, 0, nullptr, nullptr) != 1)
        return {};
    const std::unique_ptr<unsigned char[]> owned(bytes);
    std::vector<std::uint32_t> pixels;
    for (int at = 0; at < stride * height; at += 4)
        pixels.push_back(static_cast<std::uint32_t>(bytes[at + 3]) << 24 | bytes[at] << 16 |
                         bytes[at + 1] << 8 | bytes[at + 2]);
    return pixels;
}

void expectPlacement(const dlTexture& texture, const DecalCase& row)
{
    const bool isPlaced = row.mappingType != 1;
    EXPECT_EQ(texture.mappingType, row.mappingType);
    EXPECT_EQ(texture.mappingScalar, 1.5f);
    EXPECT_THAT(texture.origin, ElementsAre(100, 0, 0));
    EXPECT_THAT(texture.uDirection, ElementsAre(1, 0, 0));
    EXPECT_THAT(texture.vDirection, ElementsAre(0, 1, 0));
    EXPECT_EQ(texture.scaleU, row.scaleU);
    EXPECT_EQ(texture.scaleV, isPlaced ? 0.125f : 0.0f);
    EXPECT_EQ(texture.angle, static_cast<float>(row.degrees * std::numbers::pi / 180.0));
    EXPECT_EQ(texture.transU, row.trans[0]);
    EXPECT_EQ(texture.transV, row.trans[1]);
    EXPECT_FLOAT_EQ(texture.center[0], row.centre[0]);
    EXPECT_FLOAT_EQ(texture.center[1], row.centre[1]);
    EXPECT_EQ(texture.center[2], 0.0f);
}

void expectImage(const std::wstring& filename, const DecalCase& row)
{
    if (row.mask == Mask::kNone)
        EXPECT_EQ(filename, row.mappingType == 1 ? L"" : row.image);
    else
        EXPECT_EQ(pixelsOf(filename), row.pixels);
}

void expectDecal(const std::list<dlDecal*>& decals, std::size_t index, int faceId)
{
    const DecalCase& row = kDecals[index];
    ASSERT_EQ(decals.size(), 1u);
    const dlDecal& decal = *decals.front();
    EXPECT_EQ(decal.getFaceId(), faceId);
    EXPECT_EQ(decal.uoDecalId, 100 + static_cast<int>(index));
    EXPECT_EQ(decal.useUnderlyingAppearance, 5);
    EXPECT_EQ(decal.idName, "label");
    EXPECT_EQ(decal.textureTransU, row.textureTransU);
    EXPECT_EQ(decal.colorMask.size(), row.mask == Mask::kColour ? 1u : 0u);
    expectPlacement(decal.texture, row);
    expectImage(decal.texture.filename, row);
}

std::list<dlDecal*> decalsOnFace(const dlModel& model, int faceId)
{
    const dlBody& body = model.instances[0].part->bodies[0];
    for (int index = 0; index < body.faceCount; ++index)
        if (body.faces[index].faceId == faceId)
            return body.faces[index].getDecalList();
    return {};
}

class WholeDecals : public testing::TestWithParam<std::size_t> {
protected:
    WholeDecals() { static const Machine machine; }

    static std::unique_ptr<dlModel> load(const char* path)
    {
        return std::unique_ptr<dlModel>(dlModel::ReadModel(path));
    }
};

TEST_P(WholeDecals, LieOnTheFacesOfAPartDocument)
{
    const Prepared prepared(kPartPath, labelledPart);
    const auto model = load(kPartHostPath);
    ASSERT_NE(model, nullptr);
    ASSERT_EQ(model->instanceCount, 1);
    expectDecal(decalsOnFace(*model, faceOf(GetParam())), GetParam(), -1);
    EXPECT_TRUE(model->instances[0].getDecalList().empty());
}

TEST_P(WholeDecals, LieOnTheInstancesOfAnAssemblyAndTheFacesOfItsParts)
{
    const Prepared prepared(kAssemblyPath, labelledAssembly);
    const auto model = load(kAssemblyHostPath);
    ASSERT_NE(model, nullptr);
    ASSERT_EQ(model->instanceCount, 1);
    const int face = faceOf(GetParam());
    expectDecal(model->instances[0].getDecalList(face), GetParam(), face);
    expectDecal(decalsOnFace(*model, face), GetParam(), -1);
    EXPECT_EQ(model->instances[0].getDecalList().size(), kDecals.size());
}

INSTANTIATE_TEST_SUITE_P(Rows, WholeDecals, testing::Range(std::size_t{0}, kDecals.size()),
                         [](const auto& row) { return std::string(kDecals[row.param].name); });

}  // namespace
