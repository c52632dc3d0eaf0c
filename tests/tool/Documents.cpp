#include "Documents.h"

#include "raylume/platform/Text.h"

namespace tool_test {

Strip band(int triangles, float z)
{
    Strip strip;
    for (int i = 0; i < triangles + 2; ++i)
        strip.push_back({static_cast<float>(i / 2), static_cast<float>(i % 2), z, 0, 0, 1});
    return strip;
}

uoTempFaceTessData_c* DocumentBuilder::face(const std::vector<Strip>& strips, const std::vector<float>& uvs)
{
    auto* made = document_.own<uoTempFaceTessData_c>();
    std::vector<std::int32_t> lengths;
    std::vector<float> points;
    std::vector<float> normals;
    for (const Strip& strip : strips) {
        lengths.push_back(static_cast<std::int32_t>(strip.size()));
        for (const Corner& corner : strip) {
            points.insert(points.end(), corner.begin(), corner.begin() + 3);
            normals.insert(normals.end(), corner.begin() + 3, corner.end());
        }
    }
    made->stripCount = static_cast<std::int32_t>(strips.size());
    made->stripLengths = document_.view(lengths);
    made->points = document_.view(points);
    made->normals = document_.view(normals);
    made->hasUVs = uvs.empty() ? 0 : 1;
    made->uvs = document_.view(uvs);
    return made;
}

uoTempBodyTessData_c* DocumentBuilder::body(std::vector<uoTempFaceTessData_c*> faces)
{
    auto* made = document_.own<uoTempBodyTessData_c>();
    made->faces = document_.array(std::move(faces));
    return made;
}

uoTempPartTessData_c* DocumentBuilder::part(std::vector<uoTempBodyTessData_c*> bodies)
{
    auto* made = document_.own<uoTempPartTessData_c>();
    made->bodies = document_.array(std::move(bodies));
    return made;
}

uoTempPartTessData_c* DocumentBuilder::simplePart(const std::vector<Strip>& strips)
{
    return part({body({face(strips)})});
}

moVisualProperties_c* DocumentBuilder::look(std::uint32_t colorRef, double transparency)
{
    auto* made = document_.own<moVisualProperties_c>();
    made->activeFlag = 1;
    made->colorRef = colorRef;
    made->materialProps = document_.own<uoMaterialProperties>();
    made->materialProps->transparency = transparency;
    return made;
}

uoTempAssemblySHDData_c* DocumentBuilder::component(const std::wstring& name, uoTempPartTessData_c* part)
{
    auto* made = document_.own<uoTempAssemblySHDData_c>();
    made->name = name;
    made->tessData = part;
    return made;
}

void DocumentBuilder::place(uoTempAssemblySHDData_c& component, const std::array<double, 12>& columns)
{
    mgXform_c& xform = component.xform;
    double* const elements[] = {&xform.e0, &xform.e1, &xform.e2, &xform.e3, &xform.e4,
                                &xform.e5, &xform.e6, &xform.e7, &xform.e8};
    for (int i = 0; i < 9; ++i)
        *elements[i] = columns[i];
    xform.translation = mgVector_c(columns[9], columns[10], columns[11]);
    xform.scale = 1.0;
}

void DocumentBuilder::assembly(std::vector<uoTempAssemblySHDData_c*> components)
{
    document_.assembly = std::make_unique<OVDLAssemblyDocument>();
    document_.assembly->components = document_.array(std::move(components));
}

void DocumentBuilder::configuration(const std::wstring& name,
                                    std::vector<uoTempAssemblySHDData_c*> components)
{
    document_.configurations[name] = document_.array(std::move(components));
}

void DocumentBuilder::partDocument(uoTempPartTessData_c* part)
{
    document_.part = std::make_unique<OVDLPartDocument>();
    document_.part->tessData = part;
}

Prepared::Prepared(std::string path, std::function<void(DocumentBuilder&)> fill) : path_(std::move(path))
{
    ovdl::prepareDocument(platform::fromUtf8(path_), [fill = std::move(fill)] {
        auto document = std::make_unique<ovdl::PreparedDocument>();
        DocumentBuilder builder(*document);
        fill(builder);
        return document;
    });
}

Prepared::~Prepared()
{
    ovdl::forgetDocument(platform::fromUtf8(path_));
}

}  // namespace tool_test
