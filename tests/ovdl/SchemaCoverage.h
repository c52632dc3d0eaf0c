// Which fields of the schema ever had a value other than their default.
#pragma once

#include <set>
#include <string>

#include "MemoryStreams.h"

namespace ovdl_tests {

class SchemaCoverage {
public:
    /// Walks over every table, struct and vector of the streams.
    void add(const MemoryStreams& streams);

    /// "Table.field", "Struct.field": those that never had one.
    std::set<std::string> missing() const;

private:
    std::set<std::string> seen_;
};

}  // namespace ovdl_tests
