// Assembly document -> instances and parts.
#pragma once

#include <string>

#include "raylume/load/ReaderInterface.h"

class dlModel;

/// Fills the model from the chosen component array. Stops early when g_terminateLoad is set while
/// the parts are made. Raises invalid argument when the reader's arrays contradict themselves.
void translateAssemblyDocument(dlModel& model, OVDLAssemblyDocument& document, const std::wstring& path,
                               uoTempAssemblySHDDataArray_c& components);
