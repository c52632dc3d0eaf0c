#include "raylume/lights/LightTranslation.h"
