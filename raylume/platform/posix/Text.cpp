#include "raylume/platform/Text.h"
