// Which component array of an assembly is translated.
#pragma once

#include "raylume/load/ReaderInterface.h"

/// The array of the configuration that LDRConfigName.txt in the temporary folder names; the
/// document's own array when the file is missing, names none, or names one that the reader lacks.
uoTempAssemblySHDDataArray_c& chooseComponents(CDispListsDoc& session, OVDLAssemblyDocument& document);
