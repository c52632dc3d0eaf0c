#include "raylume/appearance/DecalTranslation.h"
