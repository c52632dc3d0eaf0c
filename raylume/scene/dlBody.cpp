#include "raylume/scene/dlBody.h"
