// The tree and the box in their plainest form: every name cut twice into a list of strings, every
// ancestor counted for every instance. What the library builds must be the same, bit for bit.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "raylume/scene/dlModel.h"

struct PlainNode {
    std::map<std::string, std::unique_ptr<PlainNode>> children;
    std::int32_t instanceCount = 0;
    std::vector<const dlInstance*> instances;
    std::int32_t subtreeCount = 0;
    std::int32_t depth = 0;
    std::string name;
    std::string path;
};

struct PlainTree {
    PlainNode root;
    dlBBox bbox;
    std::map<const dlInstance*, std::string> leafNames;
    std::map<const dlPart*, std::string> partNames;
};

/// The tree of the model's instances. The model's own is not looked at; its parts must not have names
/// yet.
PlainTree plainTreeOf(const dlModel& model);
