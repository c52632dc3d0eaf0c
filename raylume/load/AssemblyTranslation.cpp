#include "raylume/load/AssemblyTranslation.h"
