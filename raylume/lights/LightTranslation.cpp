#include "raylume/lights/LightTranslation.h"

// Lights are not translated yet.
void translateLights(dlModel& /*model*/, ovPointerArray<moLight_c>* /*lights*/, ovScene_c* /*scene*/)
{
}
