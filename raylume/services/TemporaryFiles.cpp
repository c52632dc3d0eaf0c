#include "raylume/services/TemporaryFiles.h"
