// Lists of records: their number, then each by its own operation.
#pragma once

#include <cstdint>
#include <list>
#include <utility>

#include "raylume/persist/RLArchive.h"

namespace persist {

template <class Record>
void storeList(RLArchive& archive, std::list<Record>& records)
{
    archive.archive->write(static_cast<std::uint32_t>(records.size()));
    for (Record& record : records)
        record.serialize(archive);
}

/// Appends. The number is only believed element by element; one that fails is not appended.
template <class Record>
void loadElements(RLArchive& archive, std::list<Record>& records, std::uint32_t count)
{
    for (std::uint32_t i = 0; i < count; ++i) {
        Record record;
        record.serialize(archive);
        records.push_back(std::move(record));
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
