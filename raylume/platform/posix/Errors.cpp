#include "raylume/platform/Errors.h"
