// The model that the library makes of a written document is the one that it makes of the objects.
#include <gmock/gmock.h>

#include <memory>
#include <sstream>

#include "ModelText.h"
#include "RandomDocuments.h"
#include "raylume/platform/Text.h"
#include "raylume/scene/dlModel.h"
#include "reader/DocumentWriter.h"
#include "tests/platform/ScopedEnvironment.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

using namespace ovdl_tests;

std::string modelText(const std::string& path)
{
    const std::unique_ptr<dlModel> model(dlModel::ReadModel(path.c_str()));
    return model ? textOf(*model) : "no model";
}

/// The first line that is not the same.
std::string firstDifference(const std::string& a, const std::string& b)
{
    std::istringstream left(a);
    std::istringstream right(b);
    std::string leftLine;
    std::string rightLine;
    while (true) {
        const bool more = static_cast<bool>(std::getline(left, leftLine));
        const bool moreRight = static_cast<bool>(std::getline(right, rightLine));
        if (more != moreRight || leftLine != rightLine)
            return leftLine + "\n" + rightLine;
        if (!more)
            return "";
    }
}

/// A document whose model is worth a look: nothing in it is rejected.
std::unique_ptr<ovdl::PreparedDocument> accepted(std::uint64_t seed)
{
    auto document = randomDocument(seed, 8);
    document->version = 12000;
    if (document->part)
        document->part->rejected = false;
    if (document->assembly)
        document->assembly->rejected = false;
    return document;
}

class LoadedModels : public testing::TestWithParam<const char*> {
protected:
    const TemporaryFolder folder;
    const ScopedVariable temporary{"temp", folder.path()};
};

// Under one path, so that nothing differs that comes from the path.
TEST_P(LoadedModels, AreThoseOfTheObjects)
{
    const std::string path = folder / GetParam();
    std::string all;
    for (std::uint64_t seed = 100; seed < 130; ++seed) {
        ovdl::prepareDocument(platform::fromUtf8(path), [seed] { return accepted(seed); });
        const std::string expected = modelText(path);
        ovdl::forgetDocument(platform::fromUtf8(path));
        std::string reason;
        ASSERT_TRUE(ovdl::writeDocument(platform::fromUtf8(path), *accepted(seed), reason)) << reason;
        EXPECT_EQ(firstDifference(expected, modelText(path)), "") << "seed " << seed;
        all += expected;
    }
    // The documents came to something.
    EXPECT_EQ(all.find("no model"), std::string::npos);
    for (const char* what : {"\nface", "\nmaterial", "\nlight", "\ndecals 1", "\ndecals 2", "\nnode"})
        EXPECT_NE(all.find(what), std::string::npos) << what;
}

INSTANTIATE_TEST_SUITE_P(Rows, LoadedModels, testing::Values("a.ovdl", "a.json"), [](const auto& row) {
    return std::string(row.param) == "a.ovdl" ? "ovdl" : "json";
});

}  // namespace
