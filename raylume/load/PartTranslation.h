// Part document -> one part and one instance.
#pragma once

#include <string>

#include "raylume/load/ReaderInterface.h"

class dlModel;

/// Fills the model from a part document.
void translatePartDocument(dlModel& model, OVDLPartDocument& document, const std::wstring& path);
