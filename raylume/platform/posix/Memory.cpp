#include "raylume/platform/Memory.h"
