// Lights of the document -> the model's light table.
#pragma once

#include "raylume/load/ReaderInterface.h"

class dlModel;

/// Fills the light table. `lights` and `scene` may be null.
void translateLights(dlModel& model, ovPointerArray<moLight_c>* lights, ovScene_c* scene);
