// Lists of records: their number, then each by its own operation.
#pragma once

#include <cstdint>
#include <list>

#include "raylume/persist/RLArchive.h"

namespace persist {

template <class Record>
void storeList(RLArchive& archive, std::list<Record>& records)
{
    archive.archive->write(static_cast<std::uint32_t>(records.size()));
    for (Record& record : records)
        record.serialize(archive);
}

/// Appends. The number is only believed element by element, and one that fails is taken away again. Each is
/// read in its place, since moving it there would cost as much as reading it.
template <class Record>
void loadElements(RLArchive& archive, std::list<Record>& records, std::uint32_t count)
{
    for (std::uint32_t i = 0; i < count; ++i) {
        Record& record = records.emplace_back();
        try {
            record.Record::serialize(archive);
        } catch (...) {
            records.pop_back();
            throw;
        }
    }
}

template <class Record>
void loadList(RLArchive& archive, std::list<Record>& records)
{
    std::uint32_t count = 0;
    archive.archive->read(count);
    loadElements(archive, records, count);
}

}  // namespace persist
