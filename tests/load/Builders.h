// Reader objects that own what their views point to, for tests of the translators.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "raylume/load/ReaderInterface.h"

namespace build {

/// A face: vertex i of it is at (i, 10 + i, 20 + i) + `base` with normal (-i, 0.5, 2), and texture
/// coordinates (i / 4, 1 - i / 4). Tests change the stores and call sync().
struct Face : uoTempFaceTessData_c {
    explicit Face(std::vector<std::int32_t> lengths = {3}, bool withUVs = false, float base = 0.0f);
    Face(const Face&) = delete;
    Face& operator=(const Face&) = delete;
    /// Points the views at the stores.
    void sync();

    std::vector<std::int32_t> lengthStore;
    std::vector<float> pointStore;
    std::vector<float> normalStore;
    std::vector<float> uvStore;
};

struct Body : uoTempBodyTessData_c {
    Body() = default;
    explicit Body(std::vector<uoTempFaceTessData_c*> faceList);
    Body(const Body&) = delete;
    Body& operator=(const Body&) = delete;
    void sync();

    std::vector<uoTempFaceTessData_c*> faceStore;
};

/// A part whose number of bodies may differ from what the array holds.
struct Part : uoTempPartTessData_c {
    Part() = default;
    explicit Part(std::vector<uoTempBodyTessData_c*> bodyList);
    Part(const Part&) = delete;
    Part& operator=(const Part&) = delete;
    int getNumBodies() const override;
    void sync();

    std::vector<uoTempBodyTessData_c*> bodyStore;
    bool tellsOther = false;
    int told = 0;
};

/// A part of one body of one triangle.
struct TrianglePart {
    explicit TrianglePart(float base = 0.0f) : face({3}, false, base), body({&face}), part({&body}) {}

    Face face;
    Body body;
    Part part;
};

struct Visual : moVisualProperties_c {
    Visual(std::wstring name, int active, int inherit);
    Visual(const Visual&) = delete;
    Visual& operator=(const Visual&) = delete;

    uoMaterialProperties material;
};

struct Component : uoTempAssemblySHDData_c {
    Component(std::wstring componentName, uoTempPartTessData_c* part, int configuration = 0);
    Component& at(double x, double y, double z);
};

/// A component array. Elements belong to the test.
struct Components : uoTempAssemblySHDDataArray_c {
    Components() = default;
    Components(std::initializer_list<uoTempAssemblySHDData_c*> list);
    Components(const Components&) = delete;
    Components& operator=(const Components&) = delete;
    void assign(std::vector<uoTempAssemblySHDData_c*> list);

    std::vector<uoTempAssemblySHDData_c*> store;
};

}  // namespace build
