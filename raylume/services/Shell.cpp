#include "raylume/services/Shell.h"
