// A decal that tells when it goes.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "raylume/scene/dlDecal.h"

class CountingDecal : public dlDecal {
public:
    CountingDecal(std::vector<std::string>& log, std::string name) : log_(log), name_(std::move(name)) {}
    ~CountingDecal() override { log_.push_back(name_); }

private:
    std::vector<std::string>& log_;
    std::string name_;
};
