#include "raylume/scene/dlDecal.h"
