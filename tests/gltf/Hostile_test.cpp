// Documents that were damaged, and documents that were written to do damage.
#include <gtest/gtest.h>

#include <chrono>

#include "tests/gltf/GltfBuilder.h"
#include "tests/gltf/GltfReading.h"
#include "tests/gltf/Samples.h"

namespace gltf_tests {
namespace {

// Every float that is handed out, so that a sanitizer sees whether it may be.
double touch(ovdl::ReadDocument& document)
{
    double sum = 0;
    const auto take = [&](const ovArrayView<float>& view) {
        for (long long i = 0; i < view.count; ++i)
            sum += view.data[i] > 0 ? 1 : 0;
    };
    const auto takePart = [&](uoTempPartTessData_c& part) {
        const auto& faces = part.bodies.at(0)->faces;
        for (long long i = 0; i < faces.count; ++i) {
            take(faces.at(i)->points);
            take(faces.at(i)->normals);
            take(faces.at(i)->uvs);
            EXPECT_EQ(faces.at(i)->points.count, 3 * vertexCount(*faces.at(i)));
            EXPECT_EQ(faces.at(i)->stripLengths.count, faces.at(i)->stripCount);
        }
    };
    if (document.part())
        takePart(*document.part()->tessData);
    for (long long i = 0; document.assembly() && i < document.assembly()->components.count; ++i)
        takePart(*document.assembly()->components.at(i)->tessData);
    return sum;
}

// Whatever the bytes are: an outcome, with a reason if it is a rejection.
void readAnything(const Folder& folder, const std::string& bytes)
{
    const auto outcome = read(folder.write("model.glb", bytes));
    if (outcome.kind == ovdl::ReadOutcome::kRead)
        touch(*outcome.document);
    else
        ASSERT_FALSE(outcome.reason.empty());
}

TEST(Damage, TheWholeDocumentIsSoundAndLongEnough)
{
    const std::string whole = everything().glb();
    EXPECT_GE(whole.size(), 2048u);
    const auto outcome = readBytes(whole);
    ASSERT_EQ(outcome.kind, ovdl::ReadOutcome::kRead) << outcome.reason;
    EXPECT_EQ(outcome.document->assembly()->components.count, 2);
    EXPECT_EQ(outcome.document->assembly()->lightData->count, 1);
    EXPECT_EQ(outcome.document->assembly()->viewPoint[2], 3.0);
    const auto& faces = firstPart(*outcome.document).bodies.at(0)->faces;
    ASSERT_EQ(faces.count, 3);
    EXPECT_EQ(triangleCount(*faces.at(0)), 3);
    EXPECT_EQ(triangleCount(*faces.at(1)), 3);
    EXPECT_EQ(triangleCount(*faces.at(2)), 2);
    EXPECT_GT(touch(*outcome.document), 0);
}

TEST(Damage, EveryPrefixIsRejected)
{
    const Folder folder;
    const std::string whole = everything().glb();
    for (std::size_t length = 4; length < whole.size(); ++length)
        ASSERT_EQ(read(folder.write("model.glb", whole.substr(0, length))).kind,
                  ovdl::ReadOutcome::kRejected)
            << length;
}

TEST(Damage, EveryPrefixThatStatesItsOwnLengthHasAnOutcome)
{
    const Folder folder;
    const std::string whole = everything().glb();
    for (std::size_t length = 12; length < whole.size(); ++length) {
        std::string cut = whole.substr(0, length);
        cut.replace(8, 4, GltfBuilder::word(length));
        readAnything(folder, cut);
    }
}

class DamagedBytes : public testing::TestWithParam<int> {};

// 0 to 7 flip that bit of each byte in turn, 8 sets it to zero, 9 to all ones.
TEST_P(DamagedBytes, HaveAnOutcome)
{
    const Folder folder;
    const std::string whole = everything().glb();
    for (std::size_t at = 0; at < whole.size(); ++at) {
        std::string damaged = whole;
        if (GetParam() < 8)
            damaged[at] = static_cast<char>(damaged[at] ^ 1 << GetParam());
        else
            damaged[at] = GetParam() == 8 ? '\0' : '\xFF';
        readAnything(folder, damaged);
    }
}
INSTANTIATE_TEST_SUITE_P(Each, DamagedBytes, testing::Range(0, 10));

// --------------------------------------------------------------------------------------- out of scale

// Nodes in one chain, each with the next as its child; `meshEvery` of them bears the mesh.
std::string chain(std::size_t length, std::size_t meshEvery)
{
    GltfBuilder builder;
    builder.triangleMesh();
    builder.json["buffers"] = {{{"byteLength", builder.bytes.size()},
                                {"uri", "data:;base64," + GltfBuilder::base64(builder.bytes)}}};
    std::string text = builder.json.dump();
    text.back() = ',';
    text += "\"scene\":0,\"scenes\":[{\"nodes\":[0]}],\"nodes\":[";
    for (std::size_t i = 0; i < length; ++i) {
        text += i == 0 ? "{" : ",{";
        const bool bearsMesh = (i + 1) % meshEvery == 0;
        if (bearsMesh)
            text += "\"mesh\":0";
        if (i + 1 < length)
            text += (bearsMesh ? ",\"children\":[" : "\"children\":[") + std::to_string(i + 1) + "]";
        text += "}";
    }
    return text + "]}";
}

TEST(Scale, AMillionNodesInOneChainOpen)
{
    const Folder folder;
    const auto outcome = read(folder.write("a.gltf", chain(1000000, 1000000)));
    ASSERT_EQ(outcome.kind, ovdl::ReadOutcome::kRead) << outcome.reason;
    ASSERT_NE(outcome.document->part(), nullptr) << "the one mesh stands in its own place";
}

// The model's tree writes the path of every node, so that a chain costs the square of its length.
TEST(Scale, AChainOfTenThousandNodesWithTwoComponentsHasLongNames)
{
    const Folder folder;
    const auto outcome = read(folder.write("a.gltf", chain(10000, 5000)));
    ASSERT_EQ(outcome.kind, ovdl::ReadOutcome::kRead) << outcome.reason;
    ASSERT_EQ(outcome.document->assembly()->components.count, 2);
    EXPECT_GT(outcome.document->assembly()->components.at(1)->name.size(), 100000u);
}

TEST(Scale, AChainWhoseTreeWouldTakeTooMuchIsRejectedSoon)
{
    const Folder folder;
    const auto outcome = read(folder.write("a.gltf", chain(1000000, 500000)));
    EXPECT_EQ(outcome.kind, ovdl::ReadOutcome::kRejected);
    EXPECT_NE(outcome.reason.find("too deep"), std::string::npos) << outcome.reason;
}

TEST(Scale, AMillionNodesInOneChainThatAllBearAMeshAreRejectedSoon)
{
    const Folder folder;
    const auto outcome = read(folder.write("a.gltf", chain(1000000, 1)));
    EXPECT_EQ(outcome.kind, ovdl::ReadOutcome::kRejected);
    EXPECT_NE(outcome.reason.find("component paths"), std::string::npos) << outcome.reason;
}

TEST(Scale, ComponentPathsMayComeTo64MiBInASmallFile)
{
    const Folder folder;
    // The paths of a chain of n come to some 9 n^2 characters.
    EXPECT_EQ(read(folder.write("a.gltf", chain(2000, 1))).kind, ovdl::ReadOutcome::kRead);
    EXPECT_EQ(read(folder.write("a.gltf", chain(4000, 1))).kind, ovdl::ReadOutcome::kRejected);
}

// A parent with a long name gives each of its children a long token.
TEST(Scale, ALongNameAboveManyChildrenIsRejectedSoon)
{
    std::string text = R"({"asset":{"version":"2.0"},"meshes":[{"primitives":[]}],"nodes":[{"name":")" +
                       std::string(200000, 'x') + "\",\"children\":[1";
    const int children = 20000;
    for (int i = 2; i <= children; ++i)
        text += "," + std::to_string(i);
    text += "]}";
    for (int i = 0; i < children; ++i)
        text += R"(,{"mesh":0})";
    const Folder folder;
    const auto outcome = read(folder.write("a.gltf", text + "]}"));
    EXPECT_EQ(outcome.kind, ovdl::ReadOutcome::kRejected);
}

// The same with children that show nothing costs nothing.
TEST(Scale, ALongNameAboveManyChildrenWithoutAMeshIsReadSoon)
{
    std::string text = R"({"asset":{"version":"2.0"},"cameras":[{}],"nodes":[{"name":")" +
                       std::string(1000000, 'x') + "\",\"children\":[1";
    const int children = 100000;
    for (int i = 2; i <= children; ++i)
        text += "," + std::to_string(i);
    text += "]}";
    for (int i = 0; i < children; ++i)
        text += R"(,{"camera":0})";
    const Folder folder;
    EXPECT_EQ(read(folder.write("a.gltf", text + "]}")).kind, ovdl::ReadOutcome::kRead);
}

// Many primitives that name the same bytes make many copies of them.
TEST(Scale, BytesThatAreNamedTooOftenAreRejected)
{
    GltfBuilder builder;
    const Json primitive = {
        {"attributes", {{"POSITION", builder.addValues(std::vector<float>(90000), "VEC3")}}}};
    Json primitives = Json::array();
    for (int i = 0; i < 3000; ++i)
        primitives.push_back(primitive);
    builder.addNode({{"mesh", builder.add("meshes", {{"primitives", primitives}})}});
    // Triangles without extent would all be dropped.
    for (std::size_t i = 0; i < builder.bytes.size(); i += 4) {
        const auto value = static_cast<float>(i % 1013);
        std::memcpy(&builder.bytes[i], &value, 4);
    }
    const auto outcome = readBytes(builder.glb());
    EXPECT_EQ(outcome.kind, ovdl::ReadOutcome::kRejected);
    EXPECT_NE(outcome.reason.find("justify"), std::string::npos) << outcome.reason;
}

TEST(Scale, ZerosWithoutBytesMayNotBeMany)
{
    for (const bool asIndices : {false, true}) {
        GltfBuilder builder;
        const int zeros = builder.add("accessors", {{"componentType", asIndices ? kUint32 : kFloat32},
                                                    {"count", asIndices ? 4000000000u : 1300000000u},
                                                    {"type", asIndices ? "SCALAR" : "VEC3"}});
        Json primitive = builder.triangle();
        primitive["mode"] = 5;
        if (asIndices)
            primitive["indices"] = zeros;
        else
            primitive = {{"attributes", {{"POSITION", zeros}}}};
        builder.addNode({{"mesh", builder.addMesh(primitive)}});
        EXPECT_EQ(readBytes(builder.glb()).kind, ovdl::ReadOutcome::kRejected);
    }
}

TEST(Scale, DeepJsonHasAnOutcome)
{
    const Folder folder;
    for (const char* key : {"extras", "nodes", "asset"}) {
        const std::string text = std::string("{\"") + key + "\":" + std::string(1000000, '[') +
                                 std::string(1000000, ']') + ",\"asset\":{\"version\":\"2.0\"}}";
        const auto outcome = read(folder.write("a.gltf", text));
        EXPECT_TRUE(outcome.kind == ovdl::ReadOutcome::kRead || !outcome.reason.empty());
    }
}

TEST(Scale, ListsOfEmptyRecordsAreBounded)
{
    const Folder folder;
    for (const char* section :
         {"nodes", "materials", "accessors", "meshes", "bufferViews", "images", "scenes"}) {
        std::string text = std::string(R"({"asset":{"version":"2.0"},")") + section + "\":[{}";
        for (int i = 0; i < 300000; ++i)
            text += ",{}";
        const auto outcome = read(folder.write("a.gltf", text + "]}"));
        EXPECT_TRUE(outcome.kind == ovdl::ReadOutcome::kRead || !outcome.reason.empty()) << section;
    }
}

}  // namespace
}  // namespace gltf_tests
