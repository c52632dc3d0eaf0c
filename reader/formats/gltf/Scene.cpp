#include "reader/formats/gltf/Scene.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "raylume/platform/Text.h"
#include "reader/formats/gltf/Lights.h"
#include "reader/formats/gltf/Refusal.h"

namespace ovdl::gltf {
namespace {

constexpr std::size_t kNodesAStep = 4096;

void fillXform(const Affine& world, mgXform_c& xform)
{
    xform.e0 = world.m[0];
    xform.e1 = world.m[1];
    xform.e2 = world.m[2];
    xform.e3 = world.m[3];
    xform.e4 = world.m[4];
    xform.e5 = world.m[5];
    xform.e6 = world.m[6];
    xform.e7 = world.m[7];
    xform.e8 = world.m[8];
    xform.translation.x = world.m[9];
    xform.translation.y = world.m[10];
    xform.translation.z = world.m[11];
    xform.scale = 1;
}

// A camera sees the same wherever its node is scaled.
Affine withoutScale(Affine world)
{
    for (int axis = 0; axis < 3; ++axis) {
        double* column = &world.m[3 * axis];
        const double length = std::hypot(column[0], column[1], column[2]);
        for (int row = 0; row < 3; ++row)
            column[row] =
                length > 0 && std::isfinite(length) ? column[row] / length : (row == axis ? 1 : 0);
    }
    return world;
}

}  // namespace

SceneWalk::SceneWalk(const Records& records, const NodeTree& tree, Budget& budget, Steps& steps,
                     GltfDocument& document)
    : records_(records), tree_(tree), budget_(budget), steps_(steps), document_(document), numbers_(records)
{
}

void SceneWalk::run(const std::wstring& stem)
{
    stem_ = stem;
    decideKind();
    if (!document_.isPart) {
        budget_.charge(tree_.meshNodeCount(), sizeof(uoTempAssemblySHDData_c));
        document_.reserveComponents(tree_.meshNodeCount());
    }
    const std::vector<std::uint32_t>& top = tree_.top();
    numbers_.assign(top.data(), top.size());
    levels_.push_back({top.data(), top.data() + top.size(), {}, 0, 0, 0});
    std::size_t untold = 0;
    while (!levels_.empty()) {
        Level& level = levels_.back();
        if (level.next == level.end) {
            levels_.pop_back();
            continue;
        }
        const std::uint32_t node = *level.next++;
        if (tree_.leadsSomewhere(node))
            visit(node);
        if (++untold == kNodesAStep) {
            steps_.advance(untold);
            untold = 0;
        }
    }
    steps_.advance(untold);
    document_.publishLights();
}

// One mesh in its own place is a part; where it stands in the tree then matters to nobody.
void SceneWalk::decideKind()
{
    if (tree_.meshNodeCount() != 1)
        return;
    Affine world;
    for (auto node = static_cast<std::int32_t>(tree_.soleMeshNode()); node != kNone;
         node = tree_.parent(static_cast<std::uint32_t>(node)))
        world = compose(placed(records_.nodes[static_cast<std::size_t>(node)], Affine()), world);
    document_.isPart = world == Affine();
}

Affine SceneWalk::placed(const NodeRecord& node, const Affine& above) const
{
    switch (node.placing) {
    case Placing::kTranslation:
        return compose(above, records_.translations[node.placingIndex]);
    case Placing::kAffine:
        return compose(above, records_.affines[node.placingIndex]);
    default:
        return above;
    }
}

void SceneWalk::visit(std::uint32_t index)
{
    const NodeRecord& node = records_.nodes[index];
    const Level& level = levels_.back();
    const Affine world = placed(node, level.world);
    if (node.placing != Placing::kUnplaced && !isFinite(world))
        refuse(numbered("nodes", index) + " stands at a place that is not finite");
    std::size_t nameBegin = 0;
    std::size_t nameLength = 0;
    const bool hasPath = !document_.isPart && tree_.leadsToMesh(index);
    if (hasPath)
        appendToken(level, index, nameBegin, nameLength);
    take(node, world);
    if (node.childCount == 0)
        return;
    if (hasPath)
        chargeTreePath();
    const std::uint32_t* first = records_.children.data() + node.firstChild;
    numbers_.assign(first, node.childCount);
    levels_.push_back({first, first + node.childCount, world, path_.size(), nameBegin, nameLength});
}

void SceneWalk::appendName(std::string_view name)
{
    const std::size_t begin = path_.size();
    path_.resize(begin + name.size());
    bool isAscii = true;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const auto byte = static_cast<unsigned char>(name[i]);
        path_[begin + i] = byte;
        isAscii = isAscii && byte < 0x80;
    }
    if (!isAscii)
        path_.replace(begin, name.size(), platform::fromUtf8(name));
}

// "name-<n>@owner" behind the parent's path.
void SceneWalk::appendToken(const Level& level, std::uint32_t node, std::size_t& nameBegin,
                            std::size_t& nameLength)
{
    path_.resize(level.pathLength);
    if (level.pathLength != 0)
        path_ += L'/';
    nameBegin = path_.size();
    appendName(records_.nodes[node].name());
    nameLength = path_.size() - nameBegin;
    char digits[16];
    const auto written = std::to_chars(digits, digits + sizeof(digits), numbers_[node]);
    path_ += L'-';
    path_.append(digits, written.ptr);
    path_ += L'@';
    if (level.pathLength == 0)
        path_ += stem_;
    else
        path_.append(path_, level.nameBegin, level.nameLength);
    // Only tokens on the way to a component are made, so what is made for nothing is one path at most.
    if (path_.size() > budget_.pathLimit())
        refuse("the component paths are out of proportion to the file");
}

void SceneWalk::chargeTreePath()
{
    treePathCharacters_ += path_.size();
    if (treePathCharacters_ > budget_.treePathLimit())
        refuse("the nodes are nested too deep for the paths of all of them");
}

void SceneWalk::take(const NodeRecord& node, const Affine& world)
{
    if (node.mesh != kNone)
        addComponent(node, world);
    if (node.camera != kNone && !hasView_)
        addView(world);
    if (node.light != kNone) {
        moLight_c light;
        const auto index = static_cast<std::int32_t>(document_.lights.size());
        if (fillLight(records_.lights[static_cast<std::size_t>(node.light)], world, index, light))
            document_.lights.push_back(light);
    }
}

void SceneWalk::addComponent(const NodeRecord& node, const Affine& world)
{
    uoTempPartTessData_c& part = document_.parts[static_cast<std::size_t>(node.mesh)]->part;
    if (document_.isPart) {
        document_.partDocument.tessData = &part;
        return;
    }
    pathCharacters_ += path_.size();
    if (pathCharacters_ > budget_.pathLimit())
        refuse("the component paths are out of proportion to the file");
    uoTempAssemblySHDData_c& component = document_.addComponent();
    component.name = path_;
    fillXform(world, component.xform);
    component.tessData = &part;
}

// The model gets the inverse, which takes the world to the camera, and looks along the third axis,
// which points from the scene to the camera.
void SceneWalk::addView(const Affine& world)
{
    OVDLDocument& document = document_.shared();
    fillXform(withoutScale(world), document.viewXform);
    std::copy_n(&world.m[9], 3, document.viewPoint);
    hasView_ = true;
}

}  // namespace ovdl::gltf
