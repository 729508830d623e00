#include "platform/netinfo/RecordBlock.h"

#include "platform/netinfo/RecordContent.h"
#include "platform/netinfo/Sqlite.h"

#include <algorithm>

namespace platform {

std::string_view TextArena::keep(std::string_view text) {
    if (text.size() > free_) {
        const std::size_t size = std::max(chunkSize, text.size());
        chunks_.push_back(std::make_unique_for_overwrite<char[]>(size));
        free_ = size;
        end_ = chunks_.back().get() + size;
    }
    char* place = end_ - free_;
    std::ranges::copy(text, place); // works for an empty view, whose data may be null
    free_ -= text.size();
    return {place, text.size()};
}

RecordBlock RecordBlock::children(sqlite3* database, std::int64_t parent, int* error) {
    SqliteStatement rows(database, "SELECT id, content FROM record WHERE parent = ?1 ORDER BY id");
    rows.bind(1, parent);
    return of(rows, error);
}

RecordBlock RecordBlock::of(SqliteStatement& rows, int* error) {
    RecordBlock block;
    while (rows.step()) {
        block.add(rows.number(0), rows.text(1));
    }
    *error = rows.error();
    return *error == SQLITE_OK ? std::move(block) : RecordBlock();
}

void RecordBlock::add(std::int64_t id, std::string_view content) {
    records_.push_back({id, arena_.keep(content)});
}

const RecordBlock::Record* RecordBlock::find(std::int64_t id) const {
    if (next_ < records_.size() && records_[next_].id == id) {
        return &records_[next_];
    }
    if (next_ + 1 < records_.size() && records_[next_ + 1].id == id) {
        return &records_[++next_];
    }
    const auto place = std::ranges::lower_bound(records_, id, {}, &Record::id);
    if (place == records_.end() || place->id != id) {
        return nullptr;
    }
    next_ = static_cast<std::size_t>(place - records_.begin());
    return &*place;
}

void RecordBlock::takeApart(const Record& record) const {
    if (!record.content.empty() && takenApart_ == record.content.data()) {
        return;
    }
    takenApart_ = record.content.data();
    properties_.clear();
    values_.clear();
    ContentReader reader(record.content);
    std::string_view name;
    std::size_t valueCount = 0;
    while (reader.nextProperty(&name, &valueCount)) {
        Property& property = properties_.emplace_back(Property{name, values_.size(), 0});
        for (std::string_view value; property.valueCount < valueCount && reader.nextValue(&value);
             ++property.valueCount) {
            values_.push_back(value);
        }
    }
    isWhole_ = !reader.damaged();
}

bool RecordBlock::isWhole(const Record& record) const {
    takeApart(record);
    return isWhole_;
}

std::span<const RecordBlock::Property> RecordBlock::properties(const Record& record) const {
    takeApart(record);
    return properties_;
}

const RecordBlock::Property* RecordBlock::property(const Record& record, std::string_view name) const {
    const auto all = properties(record);
    const auto place = std::ranges::find(all, name, &Property::name);
    return place == all.end() ? nullptr : &*place;
}

} // namespace platform
