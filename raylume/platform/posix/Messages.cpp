#include "raylume/platform/Messages.h"
