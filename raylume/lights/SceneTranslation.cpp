#include "raylume/lights/SceneTranslation.h"
