#include "raylume/load/ConfigurationChoice.h"
