#include "raylume/platform/UserFolders.h"
