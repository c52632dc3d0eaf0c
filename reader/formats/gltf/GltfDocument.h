// A glTF document as the reader hands it out.
#pragma once

#include <deque>
#include <memory>
#include <vector>

#include "reader/DocumentFormat.h"
#include "reader/formats/gltf/Arrays.h"
#include "reader/formats/gltf/Materials.h"

namespace ovdl::gltf {

/// The tessellation of one mesh: one body whose faces are the mesh's primitives.
struct PartTessellation {
    explicit PartTessellation(std::size_t faceCount);
    PartTessellation(const PartTessellation&) = delete;
    PartTessellation& operator=(const PartTessellation&) = delete;

    uoTempPartTessData_c part;
    uoTempBodyTessData_c body;
    uoTempBodyTessData_c* bodies[1];
    std::deque<uoTempFaceTessData_c> faces;
    std::vector<uoTempFaceTessData_c*> facePointers;
};

/// Owns everything that it hands out.
class GltfDocument : public ReadDocument {
public:
    OVDLPartDocument* part() override { return isPart ? &partDocument : nullptr; }
    OVDLAssemblyDocument* assembly() override { return isPart ? nullptr : &assemblyDocument; }
    uoTempAssemblySHDDataArray_c* configuration(const std::wstring&) override { return nullptr; }

    /// Makes room for that many components; no more may be added.
    void reserveComponents(std::size_t count);
    /// Puts a new component at the end.
    uoTempAssemblySHDData_c& addComponent();
    /// What both kinds of document share, of the kind that this one is.
    OVDLDocument& shared();
    /// Puts the lights where the library looks for them.
    void publishLights();

    bool isPart = false;
    OVDLPartDocument partDocument;
    OVDLAssemblyDocument assemblyDocument;
    std::vector<uoTempAssemblySHDData_c> components;
    std::vector<uoTempAssemblySHDData_c*> componentPointers;
    std::vector<std::unique_ptr<PartTessellation>> parts;  ///< By mesh; null for one that is not shown.
    Appearances appearances;
    std::deque<moLight_c> lights;
    std::vector<moLight_c*> lightPointers;
    ovPointerArray<moLight_c> lightArray;
    std::unique_ptr<Arrays> arrays;
};

}  // namespace ovdl::gltf
