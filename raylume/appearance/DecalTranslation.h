// Decals of the document -> dlDecal on faces and instances.
#pragma once

#include <string>

class dlInstance;
class dlPart;
class uoTempAssemblySHDData_c;
class uoTempPartTessData_c;

/// Hangs the decals of a component on its instance. A null `part` does nothing.
void attachInstanceDecals(uoTempAssemblySHDData_c& component, dlInstance* instance, dlPart* part,
                          const std::wstring& documentPath);

/// Hangs the decals of a part in one configuration on its faces. A null `part` does nothing.
void attachPartDecals(uoTempPartTessData_c& tessData, dlPart* part, const std::wstring& documentPath,
                      int configurationIndex);
