#include "ModelText.h"

#include <bit>
#include <map>
#include <sstream>
#include <type_traits>

#include "raylume/platform/Text.h"
#include "raylume/scene/dlAssemblyNode.h"
#include "raylume/scene/dlBody.h"
#include "raylume/scene/dlDecal.h"
#include "raylume/scene/dlFace.h"
#include "raylume/scene/dlInstance.h"
#include "raylume/scene/dlMaterial.h"
#include "raylume/scene/dlPart.h"

namespace ovdl_tests {
namespace {

class Text {
public:
    std::string take() { return out_.str(); }

    void model(const dlModel& m)
    {
        values(m.instanceCount, m.lightCount, m.singletonCount, m.isPartDocument, m.modelName,
               m.versionGatePassed, m.loadRejected, m.viewXform.m, m.viewPoint, m.viewDirection,
               m.viewScale, m.documentVersion, m.hasDocumentExtras, m.bbox.min, m.bbox.max);
        for (std::int32_t i = 0; i < m.instanceCount; ++i)
            instance(m.instances[i]);
        for (std::int32_t i = 0; i < m.lightCount; ++i)
            light(m.lights[i]);
        scene(m.scene);
        if (m.assemblyRoot)
            node(*m.assemblyRoot);
        std::size_t parts = 0;
        for (const auto& [key, byConfiguration] : m.parts)
            parts += byConfiguration.size();
        values("parts", parts, partNumbers_.size());
    }

private:
    template <class T>
    void value(const T& v)
    {
        if constexpr (std::is_same_v<T, float>)
            out_ << std::bit_cast<std::uint32_t>(v) << 'f';
        else if constexpr (std::is_same_v<T, double>)
            out_ << std::bit_cast<std::uint64_t>(v) << 'd';
        else if constexpr (std::is_enum_v<T>)
            out_ << static_cast<long long>(v);
        else if constexpr (std::is_same_v<T, std::wstring>)
            out_ << platform::toUtf8(v);
        else
            out_ << v;
        out_ << ' ';
    }
    template <class T, std::size_t N>
    void value(const T (&array)[N]) requires(!std::is_same_v<T, char>)
    {
        for (const T& element : array)
            value(element);
    }
    template <class T>
    void value(const std::list<T>& list)
    {
        for (const T& element : list)
            value(element);
    }

    template <class... Values>
    void values(const Values&... all)
    {
        (value(all), ...);
        out_ << '\n';
    }

    template <class T>
    void array(const T* data, std::size_t count)
    {
        value(data != nullptr);
        for (std::size_t i = 0; data && i < count; ++i)
            value(data[i]);
        out_ << '\n';
    }

    void texture(const dlTexture& t)
    {
        values("texture", t.mappingType, t.uDirection, t.vDirection, t.angle, t.origin, t.scaleU, t.scaleV,
               t.transU, t.transV, t.mappingScalar, t.center, t.filename);
    }

    void material(const dlMaterial* m)
    {
        if (!m)
            return values("no material");
        values("material", m->color, m->ambient, m->diffuse, m->specular, m->shininess, m->transparency,
               m->emission, m->colorRef, m->rvIndex, m->rvWeight, m->rvDecalValue, m->secondColorRef,
               m->rvFlagA, m->rvFlagB, m->rvLuminous, m->rvLevelA, m->rvLevelB, m->rvUnitLevel, m->rvLevelC,
               m->rvLevelD, m->rvFlagC, m->rvFlagD, m->lfpAppearance, m->visualFlag, m->surfaceFinish,
               m->idName, m->userName, m->appearanceName, m->shaderName, m->visualName, m->bumpFilename,
               m->lfpFilename, m->reservedNameC);
        texture(m->texture);
        decals(m->decals);
    }

    void decals(const std::list<dlDecal*>& all)
    {
        values("decals", all.size());
        for (const dlDecal* d : all) {
            material(d);
            values(d->maskType, d->maskFilename, d->maskInvert, d->colorMask, d->textureTransU,
                   d->textureTransV, d->textureAngleUV, d->faceId, d->uoDecalId, d->useUnderlyingAppearance,
                   d->pickDecalTag, d->instanceDecal);
        }
    }

    void instance(const dlInstance& i)
    {
        values("instance", i.name, i.leafName, i.configName, i.visible, i.xform.m,
               i.hasAppearanceAnimation);
        material(i.material);
        decals(i.decals);
        if (i.part)
            part(*i.part);
    }

    // Each part once, by the number of its first instance.
    void part(const dlPart& p)
    {
        const auto [place, isNew] = partNumbers_.try_emplace(&p, partNumbers_.size());
        values("part", place->second);
        if (!isNew)
            return;
        values(p.name, p.shortName, p.instanceUseCount, p.bodyCount, p.bbox.min, p.bbox.max);
        material(&p.material);
        for (std::int32_t i = 0; i < p.bodyCount; ++i)
            body(p.bodies[i]);
    }

    void body(const dlBody& b)
    {
        values("body", b.faceCount, b.flag, b.level, b.bbox.min, b.bbox.max);
        material(b.material);
        for (std::int32_t i = 0; i < b.faceCount; ++i)
            face(b.faces[i]);
    }

    void face(const dlFace& f)
    {
        const auto vertices = static_cast<std::size_t>(f.vertexCount);
        const auto strips = static_cast<std::size_t>(f.stripCount);
        values("face", f.vertexCount, f.stripCount, f.triangleCount, f.faceId, f.faceKey, f.vizPropMode,
               f.bbox.min, f.bbox.max);
        array(f.vertices, 6 * vertices);
        array(f.uvs, 2 * vertices);
        array(f.stripStarts, strips);
        array(f.stripLengths, strips);
        material(f.material);
        decals(f.decals);
    }

    void light(const dlLight& l)
    {
        values("light", l.lightType, l.factorA, l.factorB, l.factorC, l.colour, l.position, l.direction,
               l.valueD, l.valueE, l.rotation, l.shapeValue, l.enabled, l.name, l.optionA, l.valueF,
               l.valueG, l.optionB, l.levelB, l.valueH, l.optionC, l.valueI, l.levelC, l.valueJ,
               l.targetDistance, l.sunDay, l.sunTime, l.northAngle, l.sunVector, l.sunHaze);
    }

    void scene(const dlScene& s)
    {
        values("scene", s.floorOrient, s.floorDir, s.floorVisibility, s.floorType, s.backgroundType,
               s.backgroundTypeStr, s.backPlateImage, s.bkplVisibility, s.environmentImage, s.envVisibility,
               s.backgroundColor1, s.backgroundColor2, s.backgroundBrightness, s.renderingBrightness,
               s.sceneReflectivity);
    }

    void node(const dlAssemblyNode& n)
    {
        values("node", n.name, n.path, n.instanceCount, n.subtreeCount, n.depth, n.children.size());
        for (const auto& [token, child] : n.children)
            node(*child);
    }

    std::ostringstream out_;
    std::map<const dlPart*, std::size_t> partNumbers_;
};

}  // namespace

std::string textOf(const dlModel& model)
{
    Text text;
    text.model(model);
    return text.take();
}

}  // namespace ovdl_tests
