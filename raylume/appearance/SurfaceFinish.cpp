#include "raylume/appearance/SurfaceFinish.h"
