#include "raylume/services/Text.h"
