// The declared order of the fields of every stored record. Hosts are compiled against it, so a field that
// moves must not go unseen. The order is held and not the numbers, which are the compiler's.
#pragma once

#include <cstddef>
#include <initializer_list>

#include "raylume/persist/RLData.h"
#include "raylume/persist/RLTextureInfo.h"

namespace persist::layout {

constexpr bool ascending(std::initializer_list<std::size_t> offsets)
{
    for (auto offset = offsets.begin() + 1; offset < offsets.end(); ++offset) {
        if (*(offset - 1) >= *offset)
            return false;
    }
    return true;
}

// offsetof is conditionally supported for records that are not of standard layout.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
#define RAYLUME_AT(field) offsetof(Record, field)

namespace archive {
using Record = RLArchive;
static_assert(ascending({RAYLUME_AT(archive), RAYLUME_AT(version)}),
              "the fields of RLArchive left their order");
}  // namespace archive

namespace data {
using Record = RLData;
static_assert(ascending({RAYLUME_AT(maskMaterials), RAYLUME_AT(environmentMaterial), RAYLUME_AT(cameraData),
                         RAYLUME_AT(sceneData), RAYLUME_AT(storageVersion)}),
              "the fields of RLData left their order");
}  // namespace data

namespace camera {
using Record = RLCameraData;
static_assert(ascending({RAYLUME_AT(rotation), RAYLUME_AT(translation), RAYLUME_AT(target),
                         RAYLUME_AT(focalLength), RAYLUME_AT(projType), RAYLUME_AT(focusDist),
                         RAYLUME_AT(fStop), RAYLUME_AT(frameWidth), RAYLUME_AT(frameHeight),
                         RAYLUME_AT(RDOF), RAYLUME_AT(previewRenderQuality), RAYLUME_AT(fullRenderQuality),
                         RAYLUME_AT(imageFormat)}),
              "the fields of RLCameraData left their order");
}  // namespace camera

namespace environment {
using Record = RLEnvironmentMaterial;
static_assert(ascending({RAYLUME_AT(environmentName), RAYLUME_AT(stringTags), RAYLUME_AT(whiteLevel),
                         RAYLUME_AT(clamp), RAYLUME_AT(gamma), RAYLUME_AT(bloom), RAYLUME_AT(bloomThr),
                         RAYLUME_AT(bloomRad), RAYLUME_AT(toneAmt)}),
              "the fields of RLEnvironmentMaterial left their order");
}  // namespace environment

namespace scene {
using Record = RLSceneData;
static_assert(ascending({RAYLUME_AT(environmentImage), RAYLUME_AT(backPlateImage), RAYLUME_AT(floor),
                         RAYLUME_AT(floorType), RAYLUME_AT(envVisibility), RAYLUME_AT(bkplVisibility),
                         RAYLUME_AT(floorVisibility), RAYLUME_AT(floorFlip)}),
              "the fields of RLSceneData left their order");
}  // namespace scene

namespace mask {
using Record = RLMaskMaterial;
static_assert(ascending({RAYLUME_AT(diffuseColor), RAYLUME_AT(maskType), RAYLUME_AT(maskPTag),
                         RAYLUME_AT(maskName), RAYLUME_AT(materialName), RAYLUME_AT(materialAtRoot),
                         RAYLUME_AT(floatChannels), RAYLUME_AT(stringTags), RAYLUME_AT(advMaterialIsSet)}),
              "the fields of RLMaskMaterial left their order");
}  // namespace mask

namespace channel {
using Record = RLFloatChannel;
static_assert(ascending({RAYLUME_AT(floatVal), RAYLUME_AT(channelName)}),
              "the fields of RLFloatChannel left their order");
}  // namespace channel

namespace tag {
using Record = RLStringTag;
static_assert(ascending({RAYLUME_AT(tagID), RAYLUME_AT(tag)}),
              "the fields of RLStringTag left their order");
}  // namespace tag

namespace texture {
using Record = RLTextureInfo;
static_assert(ascending({RAYLUME_AT(scale), RAYLUME_AT(position), RAYLUME_AT(rotation),
                         RAYLUME_AT(projectionType), RAYLUME_AT(projectionAxis), RAYLUME_AT(horizontalWrap),
                         RAYLUME_AT(verticalWrap)}),
              "the fields of RLTextureInfo left their order");
}  // namespace texture

#undef RAYLUME_AT
#pragma GCC diagnostic pop

}  // namespace persist::layout
