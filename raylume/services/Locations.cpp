#include "raylume/services/Locations.h"
