#include "raylume/platform/Files.h"
