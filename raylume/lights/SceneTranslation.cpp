#include "raylume/lights/SceneTranslation.h"

// Scenes are not translated yet.
void translateScene(dlModel& /*model*/, ovScene_c& /*sceneHolder*/, const std::wstring& /*documentPath*/)
{
}
