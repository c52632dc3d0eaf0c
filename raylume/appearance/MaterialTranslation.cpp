#include "raylume/appearance/MaterialTranslation.h"
