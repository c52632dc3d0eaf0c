#include "reader/Callbacks.h"

#include "reader/HostState.h"

namespace {

OVDL_Callbacks* g_callbacks = nullptr;

}  // namespace

OVDL_Callbacks* ovdl::registeredCallbacks()
{
    return g_callbacks;
}

void SetOVDL_Callbacks(OVDL_Callbacks* callbacks)
{
    g_callbacks = callbacks;
}

OVDL_Callbacks::OVDL_Callbacks() = default;

int OVDL_Callbacks::CheckVersions(int, int)
{
    return 1;
}

std::wstring OVDL_Callbacks::GetJapaneseFontName()
{
    return {};
}

void OVDL_Callbacks::LoadExtraDataFromStorage(suFileStorage&)
{
}

void OVDL_Callbacks::UpdateProgress(float done, int, int)
{
    ovdl::forwardProgress(done);
}

int OVDL_Callbacks::ShouldReadBeCancelled()
{
    return ovdl::forwardCancelQuestion() ? 1 : 0;
}

void OVDL_Callbacks::SetPercentCompleted(float percent)
{
    ovdl::forwardProgress(percent / 100.0f);
}
