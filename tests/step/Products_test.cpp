// Documents of the import program whose models no file leads to: what writers of files leave out.
#include "reader/formats/step/import/Products.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRep_Builder.hxx>
#include <Quantity_ColorRGBA.hxx>
#include <TopExp_Explorer.hxx>
#include <TopLoc_Location.hxx>
#include <TopoDS_Compound.hxx>
#include <XCAFApp_Application.hxx>
#include <XCAFDoc_ColorTool.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>
#include <gp_Trsf.hxx>

namespace step_tests {
namespace {

constexpr std::uint32_t kRed = 0x0000FF;
constexpr std::uint32_t kGreen = 0x00FF00;

TopoDS_Shape box(double at = 0)
{
    return BRepPrimAPI_MakeBox(gp_Pnt(at, 0, 0), 1, 1, 1).Shape();
}

class Products : public testing::Test {
protected:
    Products()
    {
        XCAFDoc_ShapeTool::SetAutoNaming(Standard_False);
        XCAFApp_Application::GetApplication()->NewDocument("MDTV-XCAF", model_.document);
        shapes_ = XCAFDoc_DocumentTool::ShapeTool(model_.document->Main());
        colours_ = XCAFDoc_DocumentTool::ColorTool(model_.document->Main());
    }
    ~Products() override { XCAFApp_Application::GetApplication()->Close(model_.document); }
    TDF_Label part(const TopoDS_Shape& shape) { return shapes_->AddShape(shape, Standard_False); }
    TDF_Label assembly() { return shapes_->NewShape(); }
    TDF_Label add(const TDF_Label& assembly, const TDF_Label& product, double x)
    {
        gp_Trsf place;
        place.SetTranslation(gp_Vec(x, 0, 0));
        const TDF_Label label = shapes_->AddComponent(assembly, product, TopLoc_Location(place));
        shapes_->UpdateAssemblies();
        return label;
    }
    void colour(const TDF_Label& label, std::uint32_t colour)
    {
        const Quantity_Color value(colour == kRed, colour == kGreen, 0, Quantity_TOC_RGB);
        colours_->SetColor(label, value, XCAFDoc_ColorSurf);
    }
    void hide(const TDF_Label& label) { colours_->SetVisibility(label, Standard_False); }

    ovdl::PreparedDocument& make()
    {
        const int sink = open("/dev/null", O_WRONLY | O_CLOEXEC);
        ovdl::step::HostLink link(sink);
        ovdl::step::makeDocument(model_, {"/model.stp", "model", {}, {}}, link, document_);
        close(sink);
        return document_;
    }
    std::vector<uoTempAssemblySHDData_c*> components()
    {
        const auto& all = make().assembly->components;
        return {all.data, all.data + all.count};
    }
    static std::uint32_t colourOf(const uoTempAssemblySHDData_c& component)
    {
        return component.vizProps ? component.vizProps->colorRef : 0xFFFFFFFF;
    }

    ovdl::step::Model model_;
    Handle(XCAFDoc_ShapeTool) shapes_;
    Handle(XCAFDoc_ColorTool) colours_;
    ovdl::PreparedDocument document_;
};

TEST_F(Products, GivesTheColourOfAnAssemblyToWhatHasNoneInIt)
{
    const TDF_Label plain = part(box());
    const TDF_Label red = part(box(5));
    colour(red, kRed);
    const TDF_Label group = assembly();
    add(group, plain, 1);
    add(group, red, 2);
    colour(add(group, plain, 3), kRed);
    colour(group, kGreen);
    const TDF_Label root = assembly();
    add(root, group, 10);
    add(root, plain, 20);
    const auto all = components();
    ASSERT_EQ(all.size(), 4u);
    EXPECT_EQ(colourOf(*all[0]), kGreen);
    EXPECT_EQ(all[1]->vizProps, nullptr);
    EXPECT_EQ(all[1]->tessData->getModelVizProp(0)->colorRef, kRed);
    EXPECT_EQ(colourOf(*all[2]), kRed);
    EXPECT_EQ(all[3]->vizProps, nullptr);
}

TEST_F(Products, GivesTheInnermostColourOfAssemblies)
{
    const TDF_Label inner = assembly();
    add(inner, part(box()), 1);
    const TDF_Label outer = assembly();
    add(outer, inner, 10);
    add(outer, part(box(5)), 20);
    colour(inner, kGreen);
    const TDF_Label root = assembly();
    colour(add(root, outer, 100), kRed);
    add(root, inner, 200);
    const auto all = components();
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(colourOf(*all[0]), kGreen);
    EXPECT_EQ(colourOf(*all[1]), kRed);
    EXPECT_EQ(colourOf(*all[2]), kGreen);
}

TEST_F(Products, HidesOneOccurrenceAndNotTheOther)
{
    const TDF_Label thing = part(box());
    const TDF_Label group = assembly();
    add(group, thing, 1);
    const TDF_Label root = assembly();
    add(root, thing, 10);
    hide(add(root, thing, 20));
    hide(add(root, group, 30));
    const auto all = components();
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0]->visible, 1);
    EXPECT_EQ(all[1]->visible, 0);
    EXPECT_EQ(all[2]->visible, 0);
    EXPECT_EQ(all[1]->tessData, all[0]->tessData);
}

TEST(HostLink, ShortensReasonsBetweenCharacters)
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    std::string reason = "x";
    for (int i = 0; i < 3000; ++i)
        reason += "\xC3\xA9";
    ovdl::step::HostLink(ends[1]).say(ovdl::step::Message::kRefused, reason);
    close(ends[1]);
    std::string line(10000, '\0');
    line.resize(static_cast<std::size_t>(::read(ends[0], line.data(), line.size())));
    close(ends[0]);
    EXPECT_EQ(line, "refused " + reason.substr(0, 499) + "\n");
}

class HiddenPieces : public Products {
protected:
    // A part of two boxes.
    void SetUp() override
    {
        const BRep_Builder builder;
        builder.MakeCompound(both_);
        builder.Add(both_, box());
        builder.Add(both_, second_);
        part_ = part(both_);
    }
    static int stripsOf(const uoTempBodyTessData_c& body)
    {
        int count = 0;
        for (long long i = 0; i < body.faces.count; ++i)
            count += body.faces.data[i]->stripCount;
        return count;
    }

    TopoDS_Shape second_ = box(5);
    TopoDS_Compound both_;
    TDF_Label part_;
};

TEST_F(HiddenPieces, AreBodiesThatAreNotShown)
{
    hide(shapes_->AddSubShape(part_, second_));
    const auto& bodies = make().part->tessData->bodies;
    ASSERT_EQ(bodies.count, 2);
    EXPECT_EQ(bodies.data[0]->bodyPropInfos[0], nullptr);
    EXPECT_NE(bodies.data[1]->bodyPropInfos[0], nullptr);
    EXPECT_GT(stripsOf(*bodies.data[1]), 0);
}

TEST_F(HiddenPieces, AreFacesWithoutTriangles)
{
    hide(shapes_->AddSubShape(part_, TopExp_Explorer(second_, TopAbs_FACE).Current()));
    const auto& bodies = make().part->tessData->bodies;
    ASSERT_EQ(bodies.count, 2);
    ASSERT_EQ(bodies.data[1]->faces.count, 6);
    EXPECT_EQ(bodies.data[1]->faces.data[0]->stripCount, 0);
    EXPECT_GT(bodies.data[1]->faces.data[1]->stripCount, 0);
}

TEST_F(HiddenPieces, MayBeAllThereIs)
{
    for (TopExp_Explorer face(both_, TopAbs_FACE); face.More(); face.Next())
        hide(shapes_->AddSubShape(part_, face.Current()));
    const auto& bodies = make().part->tessData->bodies;
    ASSERT_EQ(bodies.count, 2);
    EXPECT_EQ(stripsOf(*bodies.data[0]) + stripsOf(*bodies.data[1]), 0);
}

TEST_F(Products, NeedBytesForMoreOccurrencesThanAnyFileMayHave)
{
    TDF_Label level = part(box());
    for (int i = 0; i < 16; ++i) {
        const TDF_Label next = assembly();
        add(next, level, 1);
        add(next, level, 2);
        level = next;
    }
    const TDF_Label root = assembly();
    add(root, level, 3);
    // Each level counts for its assemblies, too.
    constexpr std::uint64_t kOccurrences = (1 << 17) - 1;
    model_.bytes = 16 * kOccurrences - 1;
    EXPECT_THROW(make(), ovdl::step::Refusal);
    model_.bytes = 16 * kOccurrences;
    EXPECT_EQ(components().size(), 65536u);
}

}  // namespace
}  // namespace step_tests
