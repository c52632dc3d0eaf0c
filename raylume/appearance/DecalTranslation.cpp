#include "raylume/appearance/DecalTranslation.h"

// Decals are not translated yet.
void attachInstanceDecals(uoTempAssemblySHDData_c& /*component*/, dlInstance* /*instance*/,
                          dlPart* /*part*/, const std::wstring& /*documentPath*/)
{
}

void attachPartDecals(uoTempPartTessData_c& /*tessData*/, dlPart* /*part*/,
                      const std::wstring& /*documentPath*/, int /*configurationIndex*/)
{
}
