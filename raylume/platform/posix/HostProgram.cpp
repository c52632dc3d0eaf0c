#include "raylume/platform/HostProgram.h"
