#include "raylume/load/PartTranslation.h"
