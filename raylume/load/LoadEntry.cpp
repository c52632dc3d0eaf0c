#include "raylume/load/LoadEntry.h"
