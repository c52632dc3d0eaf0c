#include "raylume/load/TessellationCapture.h"
