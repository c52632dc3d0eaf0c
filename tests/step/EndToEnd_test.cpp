// The whole road: a file through the program, the reader library that found it beside itself, and the
// library that a host links.
#include <BRepPrimAPI_MakeBox.hxx>

#include "OcctModel.h"
#include "raylume/load/LoadEntry.h"
#include "raylume/scene/dlModel.h"
#include "reader/HostHandlers.h"

namespace step_tests {
namespace {

class StepEndToEnd : public testing::Test {
protected:
    void SetUp() override
    {
        ModelBuilder model;
        const auto root = model.assembly("root");
        const auto part = model.part("cube", BRepPrimAPI_MakeBox(10, 10, 10).Shape());
        model.colour(part, {1, 0.5, 0.25});
        model.add(root, part, moved(0, 0, 0));
        model.add(root, part, moved(100, 0, 0));
        model.writeStep(path_);
    }
    std::unique_ptr<dlModel> load() const
    {
        return std::unique_ptr<dlModel>(dlModel::ReadModel(path_.c_str()));
    }

    TemporaryFolder folder_;
    std::string path_ = folder_ / "gearbox.stp";
};

TEST_F(StepEndToEnd, GivesAModelInMetres)
{
    const auto model = load();
    ASSERT_NE(model, nullptr);
    EXPECT_FALSE(model->loadRejected);
    EXPECT_FALSE(model->isPartDocument);
    EXPECT_EQ(model->documentVersion, 12000u);
    EXPECT_EQ(model->modelName, "gearbox.stp");
    ASSERT_EQ(model->instanceCount, 2);
    EXPECT_EQ(model->instances[0].name, "cube-1@gearbox");
    EXPECT_EQ(model->instances[1].name, "cube-2@gearbox");
    EXPECT_EQ(model->instances[0].part, model->instances[1].part);
    EXPECT_EQ(model->assemblyRoot->name, "gearbox");
    EXPECT_FLOAT_EQ(model->bbox.min[0], 0);
    EXPECT_FLOAT_EQ(model->bbox.max[0], 0.11f);
    EXPECT_FLOAT_EQ(model->bbox.max[2], 0.01f);
}

TEST_F(StepEndToEnd, IsRejectedPastALimitWithAReason)
{
    const ScopedVariable memory("RAYLUME_IMPORT_SECONDS", "0.001");
    const auto model = load();
    ASSERT_NE(model, nullptr);
    EXPECT_TRUE(model->loadRejected);
    EXPECT_EQ(ovdl::lastReason(), "the import took longer than 0.001 seconds");
}

TEST_F(StepEndToEnd, IsNotRejectedWhenItIsCancelled)
{
    OVDL_Callbacks callbacks;
    SetOVDL_Callbacks(&callbacks);
    ovdl::setCancelHandler([] { return true; });
    CDispListsDoc document;
    unsigned long version = 0;
    const auto result = document.ReadFile(kReaderAccess, platform::fromUtf8(path_), version, true);
    ovdl::setCancelHandler({});
    SetOVDL_Callbacks(nullptr);
    EXPECT_EQ(result, OVXDLReader_Cancelled);
    ASSERT_NE(document.assemblyDocument, nullptr);
    EXPECT_FALSE(document.assemblyDocument->isRejected());
    EXPECT_EQ(document.assemblyDocument->components.count, 0);
}

}  // namespace
}  // namespace step_tests
