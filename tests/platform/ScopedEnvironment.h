// Variables of the environment for the length of a test.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

/// Sets or unsets one variable and puts back what was there before.
class ScopedVariable {
public:
    ScopedVariable(std::string name, const std::optional<std::string>& value) : name_(std::move(name))
    {
        if (const char* const old = std::getenv(name_.c_str())) {
            old_ = old;
        }
        put(value);
    }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;
    ~ScopedVariable() { put(old_); }

private:
    void put(const std::optional<std::string>& value) const
    {
        if (value) {
            setenv(name_.c_str(), value->c_str(), 1);
        } else {
            unsetenv(name_.c_str());
        }
    }

    std::string name_;
    std::optional<std::string> old_;
};
