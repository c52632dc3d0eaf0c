#include "raylume/scene/dlScene.h"
