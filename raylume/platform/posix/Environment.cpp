#include "raylume/platform/Environment.h"
