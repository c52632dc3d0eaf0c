#include "raylume/load/ViewTranslation.h"
