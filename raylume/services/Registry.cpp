#include "raylume/services/Registry.h"
