#include "raylume/platform/UserSettings.h"
