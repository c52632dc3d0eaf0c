#include "raylume/load/ViewTranslation.h"

#include <cstring>
#include <limits>

#include "tests/load/LoadFixture.h"

namespace {

class ViewTranslation : public LoadFixture {
protected:
    // A quarter turn about x, twice the size, moved: z of the view points against y.
    OVDLAssemblyDocument document;
    dlModel model;

    ViewTranslation()
    {
        const mgMatrix_c turn(mgUnitVector_c(1, 0, 0), mgUnitVector_c(0, 0, 1), mgUnitVector_c(0, -1, 0));
        document.viewXform = mg_RestoreXform(turn, mgVector_c(2, 4, 6), 2.0);
    }
};

TEST_F(ViewTranslation, StoresTheInverseInSinglePrecision)
{
    translateView(model, document);
    const float expected[16] = {0.5f, 0, 0, 0, 0, 0, -0.5f, 0, 0, 0.5f, 0, 0, -1, -3, 2, 1};
    for (int element = 0; element < 16; ++element)
        EXPECT_FLOAT_EQ(model.viewXform.m[element], expected[element]) << element;
}

TEST_F(ViewTranslation, TakesTheSinglePrecisionOfTheReader)
{
    document.viewXform.translation = mgVector_c(1.0 / 3.0, 0.1, 1e-20);
    float expected[16];
    document.viewXform.inverse().getGLData(expected);
    translateView(model, document);
    EXPECT_EQ(std::memcmp(model.viewXform.m, expected, sizeof expected), 0);
}

TEST_F(ViewTranslation, TakesTheDirectionFromTheTransformThatIsNotInverted)
{
    translateView(model, document);
    EXPECT_EQ(model.viewDirection[0], 0.0f);
    EXPECT_EQ(model.viewDirection[1], -1.0f);
    EXPECT_EQ(model.viewDirection[2], 0.0f);
}

TEST_F(ViewTranslation, KeepsTheScaleAndNarrowsThePoint)
{
    document.viewScale = 0.1;
    document.viewPoint[0] = 0.1;
    document.viewPoint[1] = -1e300;
    document.viewPoint[2] = 1e-50;
    translateView(model, document);
    EXPECT_EQ(model.viewScale, 0.1);
    EXPECT_EQ(model.viewPoint[0], 0.1f);
    EXPECT_EQ(model.viewPoint[1], -std::numeric_limits<float>::infinity());
    EXPECT_EQ(model.viewPoint[2], 0.0f);
}

TEST_F(ViewTranslation, TouchesNoOtherFieldOfTheTransform)
{
    model.viewXform.extra[1] = 7.0f;
    translateView(model, document);
    EXPECT_EQ(model.viewXform.extra[1], 7.0f);
}

}  // namespace
