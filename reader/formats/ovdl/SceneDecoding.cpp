// Lights and scenes.
#include "reader/formats/ovdl/Decoding.h"
#include "reader/formats/ovdl/FixedArrays.h"

namespace ovdl::decoding {
namespace {

void fillFlags(const fb::Light& from, moLight_c& to)
{
    to.sourceEnabled = from.sourceEnabled();
    to.sourceOptionA = from.sourceOptionA();
    to.sourceOptionB = from.sourceOptionB();
    to.sourceOptionC = from.sourceOptionC();
    to.lightIndex = from.lightIndex();
    to.packedColour = from.packedColour();
    to.sourceStamp = from.sourceStamp();
}

void fillValues(const fb::Light& from, moLight_c& to)
{
    to.sourceFactorA = from.sourceFactorA();
    to.sourceFactorB = from.sourceFactorB();
    to.sourceFactorC = from.sourceFactorC();
    to.sourceHaze = from.sourceHaze();
    to.sourceValueD = from.sourceValueD();
    to.sourceValueE = from.sourceValueE();
    to.sourceValueF = from.sourceValueF();
    to.sourceValueG = from.sourceValueG();
    to.sourceValueH = from.sourceValueH();
    to.sourceValueI = from.sourceValueI();
    to.sourceValueJ = from.sourceValueJ();
}

void fillPlace(const fb::Light& from, moLight_c& to)
{
    copyArray(from.sourceVectorA(), to.sourceVectorA);
    copyArray(from.sourceVectorB(), to.sourceVectorB);
    copyArray(from.sourceVectorC(), to.sourceVectorC);
    to.sourceShapeA = from.sourceShapeA();
    to.sourceShapeB = from.sourceShapeB();
    to.sourceLevelB = from.sourceLevelB();
    to.sourceLevelC = from.sourceLevelC();
}

void fillLight(const fb::Light& from, moLight_c& to, Decoding&)
{
    // Types without a name of their own are lights too.
    to.lightType = static_cast<LIGHT_TYPE>(from.lightType());
    fillFlags(from, to);
    fillValues(from, to);
    fillPlace(from, to);
}

void decodeWalls(Decoding& decoding)
{
    const auto walls = structs(decoding.document.walls());
    decoding.budget.charge(walls.size(), sizeof(pwWallInfo_c));
    decoding.objects.walls = std::vector<pwWallInfo_c>(walls.size());
    for (std::size_t i = 0; i < walls.size(); ++i)
        decoding.objects.walls[i].reflectFlag = walls[i].reflectFlag();
}

void fillImages(const flatbuffers::Vector<std::int32_t>* keyVector,
                const flatbuffers::Vector<std::uint32_t>* textVector, std::map<int, std::wstring>& images,
                Decoding& decoding)
{
    const auto keys = values(keyVector);
    const auto texts = values(textVector);
    if (keys.size() != texts.size())
        refuse("the images of a scene have more keys than names, or fewer");
    decoding.budget.charge(keys.size(), kNode + sizeof(std::wstring));
    for (std::size_t i = 0; i < keys.size(); ++i) {
        decoding.steps.tick();
        insertNew(images, keys[i], decoding.text(texts[i]), "images of a scene");
    }
}

void fillSceneData(const fb::SceneData& from, pwSceneData_c& to, Decoding& decoding)
{
    to.shadowFlag = from.shadowFlag();
    to.backgroundKind = from.backgroundKind();
    to.backgroundBrightnessValue = from.backgroundBrightnessValue();
    to.renderingBrightnessValue = from.renderingBrightnessValue();
    to.reflectivityValue = from.reflectivityValue();
    to.backgroundColor1 = colourOf(from.backgroundColor1());
    to.backgroundColor2 = colourOf(from.backgroundColor2());
    fillImages(from.backgroundImageKeys(), from.backgroundImages(), to.backgroundImages, decoding);
    fillImages(from.backgroundEnvImageKeys(), from.backgroundEnvImages(), to.backgroundEnvImages, decoding);
    to.sceneFileName = decoding.text(from.sceneFileName());
    decodePairs(from.walls(), to.walls, decoding.objects.walls, decoding, "walls");
}

void fillScene(const fb::Scene& from, ovScene_c& to, Decoding& decoding)
{
    to.floorOrientation = from.floorOrientation();
    to.floorDirection = from.floorDirection();
    to.sceneData = refer(decoding.objects.sceneData, from.sceneData(), "sceneData");
    if (const fb::Double3* point = from.floorPoint())
        to.floorPoint = {point->v()->Get(0), point->v()->Get(1), point->v()->Get(2)};
    if (const fb::Double3* vector = from.floorVector())
        to.floorVector = {vector->v()->Get(0), vector->v()->Get(1), vector->v()->Get(2)};
}

}  // namespace

void decodeLightsAndScenes(Decoding& decoding)
{
    const fb::Document& document = decoding.document;
    DecodedObjects& objects = decoding.objects;
    decodeRecords(document.lights(), objects.lights, decoding, fillLight);
    decodeWalls(decoding);
    decodeRecords(document.sceneData(), objects.sceneData, decoding, fillSceneData);
    decodeRecords(document.scenes(), objects.scenes, decoding, fillScene);
}

}  // namespace ovdl::decoding
