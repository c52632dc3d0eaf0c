#include "raylume/scene/dlTexture.h"
