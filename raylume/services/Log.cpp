#include "raylume/services/Log.h"
