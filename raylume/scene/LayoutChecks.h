// The declared order of the fields of every record that hosts read. Hosts are compiled against it, so
// a field that moves must not go unseen. The order is held and not the numbers, which are the
// compiler's.
#pragma once

#include <cstddef>
#include <initializer_list>

#include "raylume/scene/dlDecal.h"
#include "raylume/scene/dlModel.h"

namespace scene::layout {

constexpr bool ascending(std::initializer_list<std::size_t> offsets)
{
    for (auto offset = offsets.begin() + 1; offset < offsets.end(); ++offset) {
        if (*(offset - 1) >= *offset) {
            return false;
        }
    }
    return true;
}

// offsetof is conditionally supported for records that are not of standard layout; here it is.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
#define RAYLUME_AT(field) offsetof(Record, field)

namespace face {
using Record = dlFace;
static_assert(ascending({RAYLUME_AT(vertexCount), RAYLUME_AT(vertices), RAYLUME_AT(uvs),
                         RAYLUME_AT(stripCount), RAYLUME_AT(stripStarts), RAYLUME_AT(stripLengths),
                         RAYLUME_AT(projectedUVs), RAYLUME_AT(material), RAYLUME_AT(bbox),
                         RAYLUME_AT(triangleCount), RAYLUME_AT(faceId), RAYLUME_AT(faceKey),
                         RAYLUME_AT(vizPropMode), RAYLUME_AT(decals)}),
              "the fields of dlFace left their order");
}  // namespace face

namespace body {
using Record = dlBody;
static_assert(ascending({RAYLUME_AT(faceCount), RAYLUME_AT(faces), RAYLUME_AT(material), RAYLUME_AT(flag),
                         RAYLUME_AT(bbox), RAYLUME_AT(level)}),
              "the fields of dlBody left their order");
}  // namespace body

namespace part {
using Record = dlPart;
static_assert(ascending({RAYLUME_AT(bodyCount), RAYLUME_AT(bodies), RAYLUME_AT(bbox),
                         RAYLUME_AT(instanceUseCount), RAYLUME_AT(reservedA), RAYLUME_AT(reservedB),
                         RAYLUME_AT(reservedC), RAYLUME_AT(reservedD), RAYLUME_AT(name),
                         RAYLUME_AT(shortName), RAYLUME_AT(material), RAYLUME_AT(associatedInstances),
                         RAYLUME_AT(associatedItemIDs), RAYLUME_AT(associatedPersistentIDs)}),
              "the fields of dlPart left their order");
}  // namespace part

namespace instance {
using Record = dlInstance;
static_assert(ascending({RAYLUME_AT(part), RAYLUME_AT(configName), RAYLUME_AT(xform), RAYLUME_AT(name),
                         RAYLUME_AT(leafName), RAYLUME_AT(material), RAYLUME_AT(node),
                         RAYLUME_AT(hasAppearanceAnimation), RAYLUME_AT(decals), RAYLUME_AT(visible)}),
              "the fields of dlInstance left their order");
}  // namespace instance

namespace model {
using Record = dlModel;
static_assert(ascending({RAYLUME_AT(instanceCount),
                         RAYLUME_AT(instances),
                         RAYLUME_AT(lightCount),
                         RAYLUME_AT(lights),
                         RAYLUME_AT(assemblyRoot),
                         RAYLUME_AT(bbox),
                         RAYLUME_AT(singletonCount),
                         RAYLUME_AT(isPartDocument),
                         RAYLUME_AT(modelName),
                         RAYLUME_AT(versionGatePassed),
                         RAYLUME_AT(loadRejected),
                         RAYLUME_AT(viewXform),
                         RAYLUME_AT(viewPoint),
                         RAYLUME_AT(viewDirection),
                         RAYLUME_AT(viewScale),
                         RAYLUME_AT(documentVersion),
                         RAYLUME_AT(scene),
                         RAYLUME_AT(hasDocumentExtras),
                         RAYLUME_AT(animationTracks),
                         RAYLUME_AT(componentXforms),
                         RAYLUME_AT(parts)}),
              "the fields of dlModel left their order");
}  // namespace model

namespace componentXform {
using Record = dlComponentXform;
static_assert(ascending({RAYLUME_AT(tag), RAYLUME_AT(m)}),
              "the fields of dlComponentXform left their order");
}  // namespace componentXform

namespace bBox {
using Record = dlBBox;
static_assert(ascending({RAYLUME_AT(min), RAYLUME_AT(max), RAYLUME_AT(radius)}),
              "the fields of dlBBox left their order");
}  // namespace bBox

namespace xform {
using Record = dlXform;
static_assert(ascending({RAYLUME_AT(m), RAYLUME_AT(extra)}), "the fields of dlXform left their order");
}  // namespace xform

namespace scene {
using Record = dlScene;
static_assert(ascending({RAYLUME_AT(floorOrient), RAYLUME_AT(floorDir), RAYLUME_AT(floorVisibility),
                         RAYLUME_AT(floorType), RAYLUME_AT(backgroundType), RAYLUME_AT(backgroundTypeStr),
                         RAYLUME_AT(backPlateImage), RAYLUME_AT(bkplVisibility),
                         RAYLUME_AT(environmentImage), RAYLUME_AT(envVisibility),
                         RAYLUME_AT(backgroundColor1), RAYLUME_AT(backgroundColor2),
                         RAYLUME_AT(backgroundBrightness), RAYLUME_AT(renderingBrightness),
                         RAYLUME_AT(sceneReflectivity)}),
              "the fields of dlScene left their order");
}  // namespace scene

namespace light {
using Record = dlLight;
static_assert(ascending({RAYLUME_AT(lightType), RAYLUME_AT(factorA),    RAYLUME_AT(factorB),
                         RAYLUME_AT(factorC),   RAYLUME_AT(colour),     RAYLUME_AT(position),
                         RAYLUME_AT(direction), RAYLUME_AT(valueD),     RAYLUME_AT(valueE),
                         RAYLUME_AT(rotation),  RAYLUME_AT(shapeValue), RAYLUME_AT(enabled),
                         RAYLUME_AT(name),      RAYLUME_AT(optionA),    RAYLUME_AT(valueF),
                         RAYLUME_AT(valueG),    RAYLUME_AT(optionB),    RAYLUME_AT(levelB),
                         RAYLUME_AT(valueH),    RAYLUME_AT(optionC),    RAYLUME_AT(valueI),
                         RAYLUME_AT(levelC),    RAYLUME_AT(valueJ),     RAYLUME_AT(targetDistance),
                         RAYLUME_AT(sunDay),    RAYLUME_AT(sunTime),    RAYLUME_AT(northAngle),
                         RAYLUME_AT(sunVector), RAYLUME_AT(sunHaze)}),
              "the fields of dlLight left their order");
}  // namespace light

namespace material {
using Record = dlMaterial;
static_assert(ascending({RAYLUME_AT(color),          RAYLUME_AT(ambient),       RAYLUME_AT(diffuse),
                         RAYLUME_AT(specular),       RAYLUME_AT(shininess),     RAYLUME_AT(transparency),
                         RAYLUME_AT(emission),       RAYLUME_AT(texture),       RAYLUME_AT(colorRef),
                         RAYLUME_AT(rvIndex),        RAYLUME_AT(rvWeight),      RAYLUME_AT(rvDecalValue),
                         RAYLUME_AT(secondColorRef), RAYLUME_AT(rvFlagA),       RAYLUME_AT(rvFlagB),
                         RAYLUME_AT(rvLuminous),     RAYLUME_AT(rvLevelA),      RAYLUME_AT(rvLevelB),
                         RAYLUME_AT(rvUnitLevel),    RAYLUME_AT(rvLevelC),      RAYLUME_AT(rvLevelD),
                         RAYLUME_AT(rvFlagC),        RAYLUME_AT(rvFlagD),       RAYLUME_AT(lfpAppearance),
                         RAYLUME_AT(reservedFlag),   RAYLUME_AT(visualFlag),    RAYLUME_AT(surfaceFinish),
                         RAYLUME_AT(decals),         RAYLUME_AT(idName),        RAYLUME_AT(userName),
                         RAYLUME_AT(appearanceName), RAYLUME_AT(shaderName),    RAYLUME_AT(visualName),
                         RAYLUME_AT(reservedNameA),  RAYLUME_AT(reservedNameB), RAYLUME_AT(bumpFilename),
                         RAYLUME_AT(lfpFilename),    RAYLUME_AT(reservedNameC)}),
              "the fields of dlMaterial left their order");
}  // namespace material

namespace texture {
using Record = dlTexture;
static_assert(ascending({RAYLUME_AT(mappingType), RAYLUME_AT(uDirection), RAYLUME_AT(vDirection),
                         RAYLUME_AT(angle), RAYLUME_AT(origin), RAYLUME_AT(scaleU), RAYLUME_AT(scaleV),
                         RAYLUME_AT(transU), RAYLUME_AT(transV), RAYLUME_AT(mappingScalar),
                         RAYLUME_AT(center), RAYLUME_AT(filename)}),
              "the fields of dlTexture left their order");
static_assert(RAYLUME_AT(mappingType) == 0, "something stands before the first field of dlTexture");
}  // namespace texture

namespace decal {
using Record = dlDecal;
static_assert(ascending({RAYLUME_AT(decalReservedA), RAYLUME_AT(decalReservedB), RAYLUME_AT(decalReservedC),
                         RAYLUME_AT(maskType), RAYLUME_AT(maskFilename), RAYLUME_AT(maskInvert),
                         RAYLUME_AT(colorMask), RAYLUME_AT(decalReservedD), RAYLUME_AT(textureTransU),
                         RAYLUME_AT(textureTransV), RAYLUME_AT(textureAngleUV), RAYLUME_AT(faceId),
                         RAYLUME_AT(uoDecalId), RAYLUME_AT(useUnderlyingAppearance),
                         RAYLUME_AT(pickDecalTag), RAYLUME_AT(instanceDecal)}),
              "the fields of dlDecal left their order");
}  // namespace decal

namespace assemblyNode {
using Record = dlAssemblyNode;
static_assert(ascending({RAYLUME_AT(children), RAYLUME_AT(instanceCount), RAYLUME_AT(filledCount),
                         RAYLUME_AT(instances), RAYLUME_AT(subtreeCount), RAYLUME_AT(depth),
                         RAYLUME_AT(parent), RAYLUME_AT(name), RAYLUME_AT(path)}),
              "the fields of dlAssemblyNode left their order");
}  // namespace assemblyNode

namespace visualTransformKey {
using Record = dlVisualTransformKey;
static_assert(ascending({RAYLUME_AT(interpolateMode), RAYLUME_AT(red), RAYLUME_AT(green), RAYLUME_AT(blue),
                         RAYLUME_AT(transparency), RAYLUME_AT(nullVizprop)}),
              "the fields of dlVisualTransformKey left their order");
}  // namespace visualTransformKey

namespace transformKey {
using Record = dlTransformKey;
static_assert(ascending({RAYLUME_AT(interpolateMode), RAYLUME_AT(matrix)}),
              "the fields of dlTransformKey left their order");
}  // namespace transformKey

namespace visualStateKey {
using Record = dlVisualStateKey;
static_assert(ascending({RAYLUME_AT(interpolateMode), RAYLUME_AT(componentVisibility)}),
              "the fields of dlVisualStateKey left their order");
}  // namespace visualStateKey

namespace viewKey {
using Record = dlViewKey;
static_assert(ascending({RAYLUME_AT(interpolateMode), RAYLUME_AT(modelView), RAYLUME_AT(position),
                         RAYLUME_AT(focalDistance), RAYLUME_AT(focalLength)}),
              "the fields of dlViewKey left their order");
}  // namespace viewKey

namespace lightKey {
using Record = dlLightKey;
static_assert(ascending({RAYLUME_AT(interpolateMode), RAYLUME_AT(lightId), RAYLUME_AT(lightType),
                         RAYLUME_AT(enabledInRL), RAYLUME_AT(red), RAYLUME_AT(green), RAYLUME_AT(blue),
                         RAYLUME_AT(position), RAYLUME_AT(rotation), RAYLUME_AT(sunTime),
                         RAYLUME_AT(sunDay), RAYLUME_AT(sunHaze)}),
              "the fields of dlLightKey left their order");
}  // namespace lightKey

namespace animTrackSet {
using Record = dlAnimTrackSet;
static_assert(ascending({RAYLUME_AT(visualTransforms), RAYLUME_AT(transforms), RAYLUME_AT(viewKeys),
                         RAYLUME_AT(visualStates), RAYLUME_AT(lightTracks)}),
              "the fields of dlAnimTrackSet left their order");
}  // namespace animTrackSet

#undef RAYLUME_AT
#pragma GCC diagnostic pop

}  // namespace scene::layout
