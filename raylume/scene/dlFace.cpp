#include "raylume/scene/dlFace.h"
