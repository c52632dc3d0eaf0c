#include "raylume/scene/dlModel.h"
