#include "raylume/scene/dlPart.h"
