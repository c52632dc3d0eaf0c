#include "tests/load/Builders.h"

#include <algorithm>
#include <utility>

namespace build {
namespace {

template <class T>
ovArrayView<T> viewOf(const std::vector<T>& store)
{
    return {store.data(), static_cast<long long>(store.size())};
}

template <class T>
void pointAt(ovPointerArray<T>& array, std::vector<T*>& store)
{
    array.data = store.data();
    array.count = static_cast<long long>(store.size());
}

void append(std::vector<float>& store, std::initializer_list<float> values)
{
    store.insert(store.end(), values);
}

}  // namespace

Face::Face(std::vector<std::int32_t> lengths, bool withUVs, float base) : lengthStore(std::move(lengths))
{
    int vertices = 0;
    for (const std::int32_t length : lengthStore)
        vertices += std::max(length, 0);
    for (int vertex = 0; vertex < vertices; ++vertex) {
        const auto i = static_cast<float>(vertex);
        append(pointStore, {base + i, base + 10.0f + i, base + 20.0f + i});
        append(normalStore, {-i, 0.5f, 2.0f});
        append(uvStore, {i / 4.0f, 1.0f - i / 4.0f});
    }
    hasUVs = withUVs ? 1 : 0;
    stripCount = static_cast<std::int32_t>(lengthStore.size());
    sync();
}

void Face::sync()
{
    stripLengths = viewOf(lengthStore);
    points = viewOf(pointStore);
    normals = viewOf(normalStore);
    uvs = viewOf(uvStore);
}

Body::Body(std::vector<uoTempFaceTessData_c*> faceList) : faceStore(std::move(faceList))
{
    sync();
}

void Body::sync()
{
    pointAt(faces, faceStore);
}

Part::Part(std::vector<uoTempBodyTessData_c*> bodyList) : bodyStore(std::move(bodyList))
{
    sync();
}

int Part::getNumBodies() const
{
    const int held = uoTempPartTessData_c::getNumBodies();
    return tellsOther ? told : held;
}

void Part::sync()
{
    pointAt(bodies, bodyStore);
}

Visual::Visual(std::wstring name, int active, int inherit)
{
    activeFlag = active;
    inheritFlag = inherit;
    visualName = std::move(name);
    materialProps = &material;
}

Component::Component(std::wstring componentName, uoTempPartTessData_c* part, int configuration)
{
    name = std::move(componentName);
    tessData = part;
    configIndex = configuration;
}

Component& Component::at(double x, double y, double z)
{
    xform.translation = mgVector_c(x, y, z);
    return *this;
}

Components::Components(std::initializer_list<uoTempAssemblySHDData_c*> list)
{
    assign(list);
}

void Components::assign(std::vector<uoTempAssemblySHDData_c*> list)
{
    store = std::move(list);
    pointAt(*this, store);
}

}  // namespace build
