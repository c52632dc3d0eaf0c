// Real files: what the format makes of them is what Open CASCADE itself says in the same run.
#include "OcctModel.h"

namespace step_tests {
namespace {

// "name-<n>@owner" of each token without what numbers and owners it.
std::string namesOf(const std::wstring& path)
{
    std::string result;
    std::string text = platform::toUtf8(path) + "/";
    for (std::size_t end; (end = text.find('/')) != std::string::npos; text.erase(0, end + 1)) {
        const std::string token = text.substr(0, end);
        result += (result.empty() ? "" : "/") + token.substr(0, token.rfind('-', token.rfind('@')));
    }
    return result;
}

// What a face shows: of face, body, component and part the first that says.
std::multiset<std::uint32_t> coloursOf(uoTempPartTessData_c& part, moVisualProperties_c* component)
{
    std::multiset<std::uint32_t> colours;
    for (long long b = 0; b < part.bodies.count; ++b) {
        uoTempBodyTessData_c& body = *part.bodies.data[b];
        for (long long f = 0; f < body.faces.count; ++f) {
            uint32_t colour = kNoColour;
            for (moVisualProperties_c* visual :
                 {body.faces.data[f]->getFaceVizProp(0), body.getBodyVizProp(0), component,
                  part.getModelVizProp(0)})
                if (visual && colour == kNoColour)
                    colour = visual->colorRef;
            colours.insert(colour);
        }
    }
    return colours;
}

struct Occurrence {
    std::string path;
    Box box;
    std::multiset<std::uint32_t> faceColours;
};

std::vector<Occurrence> occurrencesOf(const ovdl::ReadOutcome& outcome)
{
    std::vector<Occurrence> result;
    if (OVDLPartDocument* part = outcome.document->part())
        result.push_back({"", boxOf(outcome), coloursOf(*part->tessData, nullptr)});
    for (uoTempAssemblySHDData_c* component : components(outcome)) {
        if (!component->tessData)
            continue;
        Occurrence occurrence;
        occurrence.path = namesOf(component->name);
        addFaces(*component->tessData, component->xform, occurrence.box);
        occurrence.faceColours = coloursOf(*component->tessData, component->vizProps);
        result.push_back(std::move(occurrence));
    }
    return result;
}

// As far as tessellated surfaces may lie from the true ones.
void expectSameBox(const Box& box, const Box& peer)
{
    const double tolerance = 0.003 * peer.diagonal() + 1e-7;
    for (int axis = 0; axis < 3; ++axis) {
        EXPECT_NEAR(box.min[axis], peer.min[axis], tolerance);
        EXPECT_NEAR(box.max[axis], peer.max[axis], tolerance);
    }
}

class RealFile : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override
    {
        SKIP_WITHOUT_SAMPLES();
        path_ = sample(GetParam());
        ASSERT_NE(path_, "");
        outcome_ = read(path_);
        ASSERT_EQ(outcome_.kind, ovdl::ReadOutcome::kRead) << outcome_.reason;
        peer_ = peerOccurrences(path_);
        ASSERT_FALSE(peer_.empty());
        ours_ = occurrencesOf(outcome_);
    }

    std::string path_;
    ovdl::ReadOutcome outcome_;
    std::vector<PeerOccurrence> peer_;
    std::vector<Occurrence> ours_;
};

TEST_P(RealFile, HasTreeNamesColoursAndBoxesOfOpenCascade)
{
    if (outcome_.document->part()) {
        Box all;
        std::multiset<std::uint32_t> colours;
        for (const PeerOccurrence& occurrence : peer_) {
            all.add(occurrence.box.min);
            all.add(occurrence.box.max);
            colours.insert(occurrence.faceColours.begin(), occurrence.faceColours.end());
        }
        expectSameBox(ours_[0].box, all);
        EXPECT_EQ(ours_[0].faceColours, colours);
        return;
    }
    ASSERT_EQ(ours_.size(), peer_.size());
    for (std::size_t i = 0; i < peer_.size(); ++i) {
        SCOPED_TRACE(peer_[i].path);
        EXPECT_EQ(ours_[i].path, peer_[i].path);
        EXPECT_EQ(ours_[i].faceColours, peer_[i].faceColours);
        expectSameBox(ours_[i].box, peer_[i].box);
    }
}

const char* const kFiles[] = {"cax-if/as1-oc-214.stp",
                              "cax-if/as1-oc-214/as1-oc-214.stp",
                              "cax-if/as1-tu-203.stp",
                              "cax-if/as1_pe_203.stp",
                              "cax-if/dm1-id-214.stp",
                              "cax-if/dm1-pe-214.stp",
                              "cax-if/s1-c5-214/FOOT.stp",
                              "cax-if/s1-c5-214/HEAD.stp",
                              "cax-if/s1-c5-214/MAINBODY.stp",
                              "cax-if/s1-c5-214/TAIL.stp",
                              "cax-if/s1-c5-214/s1-c5-214.stp",
                              "cax-if/s1-c5-214/MAINBODY_BACK.stp",
                              "cax-if/s1-tu-203/s1-tu-203.stp",
                              "cax-if/s1-tu-203/tailturbine.stp",
                              "cax-if/s1_pe_214/foot_asm.stp",
                              "cax-if/s1_pe_214/head_asm.stp",
                              "cax-if/s1_pe_214/main_body_front_prt.stp",
                              "cax-if/s1_pe_214/mainbody_asm.stp",
                              "cax-if/s1_pe_214/s1_pe_214.stp",
                              "cax-if/s1_pe_214/tail_asm.stp",
                              "cax-if/sg1-c5-214.stp",
                              "conical-surface/conical-surface.step",
                              "cube-10x10mm/Cube 10x10.igs",
                              "cube-10x10mm/Cube 10x10.stp",
                              "cube-fcstd/cube.step",
                              "cube-fcstd/cube2.step",
                              "cube-fcstd/cube3.step",
                              "cube-units/cube-in.step",
                              "cube-units/cube-m.step",
                              "cube-units/cube-mm.step",
                              "rounded-cube/rounded-cube.step",
                              "simple-basic-cube/cube.stp"};

INSTANTIATE_TEST_SUITE_P(Samples, RealFile, testing::ValuesIn(kFiles), [](const auto& row) {
    std::string name = row.param;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
});

// All others of the package are read too, or refused because of their load check.
TEST(RealFiles, AreReadUnlessTheirLoadCheckFails)
{
    SKIP_WITHOUT_SAMPLES();
    int refused = 0;
    for (const std::string& path : allSamples()) {
        const auto outcome = read(path);
        if (outcome.kind == ovdl::ReadOutcome::kRead)
            continue;
        EXPECT_THAT(outcome.reason, testing::StartsWith("the load check fails: #")) << path;
        ++refused;
    }
    EXPECT_EQ(refused, 3);
}

}  // namespace
}  // namespace step_tests
