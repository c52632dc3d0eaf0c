// Models built by hand, without a document.
#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "raylume/scene/dlModel.h"

namespace tool_test {

/// The numbers of one face: 6 floats a vertex.
struct FaceData {
    std::vector<float> vertices;
    std::vector<std::int32_t> stripLengths;
    std::vector<float> uvs;
};

inline void fillFace(const FaceData& data, dlFace& face)
{
    face.vertexCount = static_cast<std::int32_t>(data.vertices.size() / 6);
    face.vertices = new float[data.vertices.size()];
    std::copy(data.vertices.begin(), data.vertices.end(), face.vertices);
    face.stripCount = static_cast<std::int32_t>(data.stripLengths.size());
    face.stripStarts = new std::int32_t[data.stripLengths.size()];
    face.stripLengths = new std::int32_t[data.stripLengths.size()];
    std::int32_t start = 0;
    for (std::size_t i = 0; i < data.stripLengths.size(); ++i) {
        face.stripStarts[i] = start;
        face.stripLengths[i] = data.stripLengths[i];
        start += data.stripLengths[i];
        face.triangleCount += data.stripLengths[i] - 2;
    }
    if (!data.uvs.empty()) {
        face.uvs = new float[data.uvs.size()];
        std::copy(data.uvs.begin(), data.uvs.end(), face.uvs);
    }
    for (std::int32_t i = 0; i < face.vertexCount; ++i)
        face.bbox.addPoint(face.vertices + 6 * i);
}

/// A model of instances that stand where they are told, with its tree.
class ModelBuilder {
public:
    dlPart& part(std::initializer_list<FaceData> faces)
    {
        auto* made = new dlPart;
        made->bodyCount = 1;
        made->bodies = new dlBody[1];
        dlBody& body = made->bodies[0];
        body.faceCount = static_cast<std::int32_t>(faces.size());
        body.faces = new dlFace[faces.size()];
        std::size_t i = 0;
        for (const FaceData& data : faces) {
            dlFace& face = body.faces[i++];
            fillFace(data, face);
            for (std::int32_t v = 0; v < face.vertexCount; ++v)
                made->bbox.addPoint(face.vertices + 6 * v);
        }
        model_->addDLPart(made, made, -1);
        return *made;
    }

    /// Instances are made by build(); until then they are told by name and part.
    ModelBuilder& instance(std::string name, dlPart* part)
    {
        names_.push_back(std::move(name));
        parts_.push_back(part);
        return *this;
    }

    std::unique_ptr<dlModel> build()
    {
        model_->instanceCount = static_cast<std::int32_t>(names_.size());
        model_->instances = new dlInstance[names_.size()];
        for (std::size_t i = 0; i < names_.size(); ++i) {
            model_->instances[i].name = names_[i];
            model_->instances[i].part = parts_[i];
        }
        return std::move(model_);
    }

    static std::unique_ptr<dlModel> withTree(std::unique_ptr<dlModel> model)
    {
        model->createAssemblyHierarchy();
        return model;
    }

private:
    std::unique_ptr<dlModel> model_ = std::make_unique<dlModel>();
    std::vector<std::string> names_;
    std::vector<dlPart*> parts_;
};

/// One triangle in the plane z = 0.
inline FaceData triangle()
{
    return {{0, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 1}, {3}, {}};
}

}  // namespace tool_test
