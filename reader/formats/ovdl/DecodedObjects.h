// The objects of a decoded document.
#pragma once

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "raylume/load/ReaderInterface.h"

namespace ovdl::decoding {

/// One tessellation. The arrays of its faces lie in the document's streams.
struct DecodedTessellation {
    uoTempPartTessData_c part;
    std::vector<uoTempBodyTessData_c*> partBodies;
    std::vector<uoTempBodyTessData_c> bodies;
    std::vector<std::vector<uoTempFaceTessData_c*>> bodyFaces;
    std::vector<uoBodyPropInfo_c> propInfos;
    std::vector<uoTempFaceTessData_c> faces;
};

/// A document that has what it says: pieces of memory for its pointers.
struct DecodedExtras {
    OVDLExtrasBlock block;
    OVDLExtrasRecord record;
    char pointedAt = 0;
};

/// All objects of a document, each kind in the order of the document. They point at each other, so they
/// stay where they are.
struct DecodedObjects {
    std::vector<uoMaterialTextureProperties> textures;
    std::vector<uoRVAppearanceProperties> renderAppearances;
    std::vector<uoMaterialProperties> materials;
    std::vector<moVisualProperties_c> visuals;
    std::vector<uoDecalProperties> decals;
    std::vector<moLight_c> lights;
    std::vector<pwWallInfo_c> walls;
    std::vector<pwSceneData_c> sceneData;
    std::vector<ovScene_c> scenes;
    std::vector<DecodedTessellation> tessellations;
    std::vector<uoTempAssemblySHDData_c> components;

    struct Configuration {
        std::vector<uoTempAssemblySHDData_c*> components;
        uoTempAssemblySHDDataArray_c array;
    };
    std::map<std::wstring, Configuration> configurations;

    struct LightArray {
        std::vector<moLight_c*> lights;
        ovPointerArray<moLight_c> array;
    };
    LightArray partLights;
    LightArray assemblyLights;
    std::unique_ptr<OVDLPartDocument> part;
    std::unique_ptr<OVDLAssemblyDocument> assembly;
    std::vector<uoTempAssemblySHDData_c*> assemblyComponents;
    DecodedExtras extras;

    /// Streams that had to be moved to a better address.
    std::deque<std::vector<std::uint64_t>> movedStreams;
};

}  // namespace ovdl::decoding
