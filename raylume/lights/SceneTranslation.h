// Scene data of a part document -> dlScene.
#pragma once

#include <string>

class dlModel;
class ovScene_c;

/// Fills the model's scene from a holder that has scene data.
void translateScene(dlModel& model, ovScene_c& sceneHolder, const std::wstring& documentPath);
