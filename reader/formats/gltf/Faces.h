// From primitives to faces: the geometry of one face.
#pragma once

#include "raylume/load/ReaderInterface.h"
#include "reader/formats/gltf/Arrays.h"
#include "reader/formats/gltf/Triangles.h"
#include "reader/formats/strips/Strips.h"

namespace ovdl::gltf {

/// Fills faces with the strips of primitives. Keeps its scratch blocks from one to the next.
class FaceBuilder {
public:
    FaceBuilder(const Records& records, Accessors& accessors, Budget& budget, Arrays& arrays);

    /// Fills the strips and arrays of `face`; `texCoordSet` says which texture coordinates it gets,
    /// if the primitive has them. The primitive is one of triangles, with positions. Raises Refusal.
    void build(const PrimitiveRecord& primitive, std::int32_t texCoordSet, uoTempFaceTessData_c& face);

private:
    // Where vertices are read from: the document, or what was worked out here.
    struct Vertices {
        Elements position;
        Elements normal;
        Elements texCoord;
        bool hasNormals = false;
        bool hasTexCoords = false;
    };
    // Vertices as plain floats, made where the document's own cannot be compared or lack normals.
    struct Plain {
        Scratch<float> positions;
        Scratch<float> normals;
        Scratch<float> texCoords;
    };

    Vertices verticesOf(const PrimitiveRecord& primitive, std::int32_t texCoordSet);
    Elements attribute(std::int32_t accessor, ElementType type, std::size_t count);
    TriangleList trianglesOf(const PrimitiveRecord& primitive, std::size_t vertexCount);
    void unshare(TriangleList& triangles, Vertices& vertices);
    void weld(TriangleList& triangles, const Vertices& vertices);
    std::size_t gatherPlain(const std::uint32_t* order, std::size_t count, const Vertices& vertices);
    void fill(const TriangleList& triangles, const Vertices& vertices, const StripIds& strips,
              uoTempFaceTessData_c& face);
    float* filled(const Elements& elements, int components, const std::uint32_t* order, std::size_t count);

    const Records& records_;
    Accessors& accessors_;
    Budget& budget_;
    Arrays& arrays_;
    Stripifier stripifier_;
    Scratch<std::uint32_t> list_;
    Scratch<std::uint32_t> order_;
    Scratch<std::uint32_t> remap_;
    Plain plain_;
};

}  // namespace ovdl::gltf
