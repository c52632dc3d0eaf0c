// Objects numbered in the order in which they are met, so that one which several others point at is written
// once.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace ovdl {

template <class T>
class ObjectNumbers {
public:
    /// True for an object that was not met before; null is never one.
    bool add(const T* object)
    {
        if (!object || !numbers_.try_emplace(object, static_cast<std::int32_t>(objects_.size())).second)
            return false;
        objects_.push_back(object);
        return true;
    }

    /// -1 for null. The object was added.
    std::int32_t of(const T* object) const { return object ? numbers_.at(object) : -1; }

    const std::vector<const T*>& objects() const { return objects_; }

private:
    std::unordered_map<const T*, std::int32_t> numbers_;
    std::vector<const T*> objects_;
};

}  // namespace ovdl
