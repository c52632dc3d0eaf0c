#include "raylume/load/StorageRegistry.h"
