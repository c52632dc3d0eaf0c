#include "raylume/platform/Paths.h"
