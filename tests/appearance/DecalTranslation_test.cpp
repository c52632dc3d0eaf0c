#include "raylume/appearance/DecalTranslation.h"

#include <gtest/gtest.h>

#include "raylume/load/ReaderInterface.h"
#include "raylume/scene/dlInstance.h"

namespace {

TEST(InstanceDecals, without_a_part_none_is_hung_on_the_instance)
{
    uoDecalProperties decal;
    decal.faceMappings.push_back({});
    uoTempAssemblySHDData_c component;
    component.decals.push_back(&decal);
    dlInstance instance;
    attachInstanceDecals(component, &instance, nullptr, L"c:\\assembly.doc");
    EXPECT_TRUE(instance.getDecalList().empty());
}

TEST(PartDecals, without_a_part_the_document_is_left_alone)
{
    uoDecalProperties decal;
    decal.faceMappings.push_back({});
    uoTempPartTessData_c tessData;
    tessData.decalsByConfig[0].push_back(&decal);
    attachPartDecals(tessData, nullptr, L"c:\\part.doc", 0);
    EXPECT_EQ(tessData.decalsByConfig.size(), 1u);
    EXPECT_EQ(decal.faceMappings.size(), 1u);
}

}  // namespace
