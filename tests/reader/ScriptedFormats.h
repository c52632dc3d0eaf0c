// Formats that do what a test tells them.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "reader/DocumentFormat.h"

namespace scripted {

class Document : public ovdl::ReadDocument {
public:
    OVDLPartDocument* part() override { return nullptr; }
    OVDLAssemblyDocument* assembly() override { return &assembly_; }
    uoTempAssemblySHDDataArray_c* configuration(const std::wstring&) override { return nullptr; }
    OVXDLReader_FileLoadResult result() const override { return given; }

    OVXDLReader_FileLoadResult given = OVXDLReader_Loaded;

private:
    OVDLAssemblyDocument assembly_;
};

inline ovdl::ReadOutcome goodOutcome()
{
    ovdl::ReadOutcome outcome;
    outcome.document = std::make_unique<Document>();
    return outcome;
}

class Format : public ovdl::DocumentFormat {
public:
    explicit Format(std::string name = "scripted") : name_(std::move(name)) {}

    const char* name() const override { return name_.c_str(); }
    bool recognises(const std::wstring& path, std::string& reason) override
    {
        ++questions;
        return onRecognise ? onRecognise(path, reason) : true;
    }
    ovdl::ReadOutcome read(const std::wstring&, ovdl::ReadContext& context) override
    {
        return onRead ? onRead(context) : goodOutcome();
    }
    void forgetProbes() override { ++forgotten; }

    int questions = 0;
    int forgotten = 0;
    std::function<bool(const std::wstring&, std::string&)> onRecognise;
    std::function<ovdl::ReadOutcome(ovdl::ReadContext&)> onRead;

private:
    std::string name_;
};

}  // namespace scripted
