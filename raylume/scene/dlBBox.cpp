#include "raylume/scene/dlBBox.h"
