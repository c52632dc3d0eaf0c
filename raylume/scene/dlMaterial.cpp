#include "raylume/scene/dlMaterial.h"
