#include "raylume/scene/dlInstance.h"
