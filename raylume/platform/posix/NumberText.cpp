#include "raylume/platform/NumberText.h"
