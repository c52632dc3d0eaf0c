// The whole road: a glTF file through the reader into the model that a host gets.
#include <gmock/gmock.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <random>

#include "raylume/load/LoadEntry.h"
#include "raylume/scene/dlModel.h"
#include "reader/HostHandlers.h"
#include "tests/gltf/Samples.h"

namespace gltf_tests {
namespace {

// A document in a folder of its own, loaded.
class Loaded {
public:
    explicit Loaded(const std::string& bytes, const char* name = "model.glb")
        : folder_(std::filesystem::temp_directory_path() /
                  ("raylume-gltf-" + std::to_string(std::random_device{}())))
    {
        std::filesystem::create_directories(folder_);
        std::ofstream(folder_ / name, std::ios::binary) << bytes;
        path_ = (folder_ / name).string();
        model_.reset(dlModel::ReadModel(path_.c_str()));
    }
    Loaded(const Loaded&) = delete;
    Loaded& operator=(const Loaded&) = delete;
    ~Loaded() { std::filesystem::remove_all(folder_); }

    dlModel* operator->() const { return model_.get(); }
    explicit operator bool() const { return model_ != nullptr; }
    const std::string& path() const { return path_; }
    std::string folder() const { return folder_.string(); }

private:
    std::filesystem::path folder_;
    std::string path_;
    std::unique_ptr<dlModel> model_;
};

TEST(EndToEnd, AnAssemblyHasItsTreePartsAndView)
{
    const Loaded model(everything().glb());
    ASSERT_TRUE(model);
    EXPECT_FALSE(model->loadRejected);
    EXPECT_FALSE(model->isPartDocument);
    EXPECT_EQ(model->documentVersion, 12000u);
    EXPECT_TRUE(model->versionGatePassed);
    EXPECT_EQ(model->modelName, "model.glb");
    ASSERT_EQ(model->instanceCount, 2);
    EXPECT_EQ(model->instances[0].name, "root-1@model/mesh_1-1@root");
    EXPECT_EQ(model->instances[1].name, "root-1@model/leaf-1@root");
    EXPECT_EQ(model->instances[1].leafName, "leaf-1@root");
    EXPECT_EQ(model->instances[0].part, model->instances[1].part);
    EXPECT_EQ(model->instances[0].part->shortName, "mesh_1");
    EXPECT_EQ(model->assemblyRoot->name, "model");
    ASSERT_EQ(model->assemblyRoot->children.size(), 1u);
    EXPECT_EQ(model->assemblyRoot->children.begin()->second->name, "root");
    EXPECT_EQ(model->assemblyRoot->children.begin()->second->instanceCount, 2);
    EXPECT_EQ(model->singletonCount, 0);

    // The camera stands at (1, 2, 3) below a node that is scaled by 2 along y.
    EXPECT_THAT(model->viewPoint, testing::ElementsAre(1.0f, 4.0f, 3.0f));
    EXPECT_THAT(model->viewDirection, testing::ElementsAre(0.0f, 0.0f, 1.0f));
    EXPECT_EQ(model->viewXform.m[12], -1.0f);
    EXPECT_EQ(model->viewXform.m[13], -4.0f);
    EXPECT_EQ(model->viewScale, 1.0);
}

TEST(EndToEnd, FacesHaveTheirStripsAndMaterials)
{
    const Loaded model(everything().glb());
    ASSERT_TRUE(model);
    dlPart& part = *model->instances[0].part;
    ASSERT_EQ(part.bodyCount, 1);
    ASSERT_EQ(part.bodies[0].faceCount, 3);
    EXPECT_EQ(part.bodies[0].level, 100);
    const dlFace& face = part.bodies[0].faces[0];
    EXPECT_EQ(face.faceId, 1);
    EXPECT_EQ(face.triangleCount, 3);
    ASSERT_NE(face.material, nullptr);
    EXPECT_EQ(face.material->userName, "wood");
    EXPECT_EQ(face.material->transparency, 0.5f);
    EXPECT_EQ(face.material->emission, 0.5f);
    EXPECT_EQ(face.material->shininess, 0.75f);
    EXPECT_EQ(face.material->color[0], 188 / 255.0f);
    EXPECT_EQ(face.material->shaderName, "custom_texture");
    EXPECT_EQ(face.material->texture.mappingType, 0u);
    EXPECT_EQ(face.material->texture.scaleU, 1.0f);
    EXPECT_EQ(face.material->texture.scaleV, 1.0f);
    EXPECT_EQ(face.material->texture.uDirection[0], 1.0f);
    EXPECT_EQ(face.material->texture.vDirection[1], 1.0f);
    const std::wstring& image = face.material->texture.filename;
    EXPECT_EQ(std::string(image.begin(), image.end()), model.folder() + "/wood grain.png");
    ASSERT_NE(face.uvs, nullptr);
    // A face without a material shows the format's own white, not the red of a record nobody filled.
    const dlFace& plain = part.bodies[0].faces[1];
    ASSERT_NE(plain.material, nullptr);
    EXPECT_THAT(plain.material->color, testing::Each(1.0f));
    EXPECT_EQ(plain.material->texture.mappingType, 1u);
}

TEST(EndToEnd, TheBoxIsThatOfThePlacedMeshes)
{
    GltfBuilder builder;
    const int mesh = builder.triangleMesh();
    builder.addNode({{"mesh", mesh}, {"translation", {10, 20, 30}}});
    builder.addNode({{"mesh", mesh}, {"scale", {-2, 1, 1}}});
    const Loaded model(builder.glb());
    ASSERT_TRUE(model);
    EXPECT_THAT(model->bbox.min, testing::ElementsAre(-2.0f, 0.0f, 0.0f));
    EXPECT_THAT(model->bbox.max, testing::ElementsAre(11.0f, 21.0f, 30.0f));
}

TEST(EndToEnd, OneMeshIsAPartDocument)
{
    GltfBuilder builder;
    builder.addNode({{"mesh", builder.triangleMesh()}, {"name", "bolt"}});
    const Loaded model(builder.gltfEmbedded(), "bolt.gltf");
    ASSERT_TRUE(model);
    EXPECT_TRUE(model->isPartDocument);
    ASSERT_EQ(model->instanceCount, 1);
    EXPECT_EQ(model->instances[0].name, "root");
    EXPECT_EQ(model->instances[0].part->name, "bolt.gltf");
    EXPECT_EQ(model->singletonCount, 1);
}

TEST(EndToEnd, ABrokenDocumentIsARejectedModelWithAReason)
{
    GltfBuilder builder;
    builder.addNode({{"mesh", 5}});
    const Loaded model(builder.glb());
    ASSERT_TRUE(model);
    EXPECT_TRUE(model->loadRejected);
    EXPECT_EQ(model->instanceCount, 0);
    EXPECT_THAT(ovdl::lastReason(), testing::HasSubstr("nodes[0] names mesh 5 of 0"));
}

TEST(EndToEnd, WhatIsNoDocumentCannotBeOpened)
{
    EXPECT_FALSE(Loaded("{}", "model.json"));
}

}  // namespace
}  // namespace gltf_tests
