#include "raylume/scene/dlLight.h"
