// A load with the recording reader and the stand-ins, everything at its default before each test.
#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include "raylume/load/StorageRegistry.h"
#include "raylume/platform/Messages.h"
#include "raylume/platform/Text.h"
#include "raylume/scene/dlModel.h"
#include "tests/load/Builders.h"
#include "tests/load/LiveModels.h"
#include "tests/load/StandIns.h"
#include "tests/recording_reader/RecordingReader.h"

class LoadFixture : public testing::Test {
protected:
    LoadFixture()
    {
        resetWorld();
        platform::setMessageBoxHandler([this](const std::wstring& text) { messages.push_back(text); });
    }

    ~LoadFixture() override
    {
        resetWorld();
        platform::setMessageBoxHandler(nullptr);
        platform::setAnsiCodePage(65001);
    }

    static void resetWorld()
    {
        g_terminateLoad = false;
        recorder().reset();
        standins::reset();
        while (!g_storageRegistry.empty())
            dropRegisteredStorage(g_storageRegistry.begin()->first);
        recorder().reset();
    }

    static recording::Recorder& recorder() { return recording::Recorder::get(); }
    static recording::Answers& answers() { return recording::Recorder::get().answers; }
    static standins::StandIns& standIns() { return standins::get(); }
    static const std::vector<std::string>& lines() { return recording::Recorder::get().lines(); }

    static std::unique_ptr<dlModel> load(const char* path = "a.doc")
    {
        return std::unique_ptr<dlModel>(dlModel::ReadModel(path));
    }

    std::vector<std::wstring> messages;
};
