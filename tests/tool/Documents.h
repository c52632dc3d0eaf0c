// Prepared documents for the tests of the tool, built from a few lines each.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "reader/PreparedDocuments.h"

namespace tool_test {

/// Position and normal.
using Corner = std::array<float, 6>;
using Strip = std::vector<Corner>;

/// A strip of n triangles in the plane z, over a band from x = 0 on, normals along z.
Strip band(int triangles, float z = 0);

/// Makes the objects of one document, which owns them.
class DocumentBuilder {
public:
    explicit DocumentBuilder(ovdl::PreparedDocument& document) : document_(document) {}

    uoTempFaceTessData_c* face(const std::vector<Strip>& strips, const std::vector<float>& uvs = {});
    uoTempBodyTessData_c* body(std::vector<uoTempFaceTessData_c*> faces);
    uoTempPartTessData_c* part(std::vector<uoTempBodyTessData_c*> bodies);
    /// A part of one body with one face.
    uoTempPartTessData_c* simplePart(const std::vector<Strip>& strips);

    /// Red, green, blue; on, and the surface's own.
    moVisualProperties_c* look(std::uint32_t colorRef, double transparency = 0);

    uoTempAssemblySHDData_c* component(const std::wstring& name, uoTempPartTessData_c* part);
    static void place(uoTempAssemblySHDData_c& component, const std::array<double, 12>& columns);

    void assembly(std::vector<uoTempAssemblySHDData_c*> components);
    void configuration(const std::wstring& name, std::vector<uoTempAssemblySHDData_c*> components);
    void partDocument(uoTempPartTessData_c* part);

    ovdl::PreparedDocument& document() { return document_; }

private:
    ovdl::PreparedDocument& document_;
};

/// Puts a document under a path for as long as the object lives.
class Prepared {
public:
    Prepared(std::string path, std::function<void(DocumentBuilder&)> fill);
    Prepared(const Prepared&) = delete;
    Prepared& operator=(const Prepared&) = delete;
    ~Prepared();

    const std::string& path() const { return path_; }

private:
    std::string path_;
};

}  // namespace tool_test
