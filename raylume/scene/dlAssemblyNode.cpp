#include "raylume/scene/dlAssemblyNode.h"
