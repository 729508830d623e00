#include "RecordBlock.h"

#include "Sqlite.h"

#include <algorithm>
#include <string>

namespace platform {

std::string_view TextArena::keep(std::string_view text) {
    if (text.size() > free_) {
        const std::size_t size = std::max(chunkSize, text.size());
        chunks_.push_back(std::make_unique_for_overwrite<char[]>(size));
        free_ = size;
        end_ = chunks_.back().get() + size;
    }
    char* place = end_ - free_;
    std::ranges::copy(text, place); // an empty text may have no place of its own
    free_ -= text.size();
    return {place, text.size()};
}

RecordBlock RecordBlock::children(sqlite3* database, std::int64_t parent, int* error) {
    return read(database, "r.parent", parent, error);
}

RecordBlock RecordBlock::single(sqlite3* database, std::int64_t id, int* error) {
    return read(database, "r.id", id, error);
}

RecordBlock RecordBlock::read(sqlite3* database, const char* condition, std::int64_t key, int* error) {
    RecordBlock block;
    *error = block.readRecords(database, condition, key);
    if (*error == SQLITE_OK) {
        *error = block.readProperties(database, condition, key);
    }
    if (*error == SQLITE_OK) {
        *error = block.readValues(database, condition, key);
    }
    if (*error != SQLITE_OK) {
        return {};
    }
    block.positions_ = {};
    return block;
}

int RecordBlock::readRecords(sqlite3* database, const char* condition, std::int64_t key) {
    SqliteStatement rows(database,
                         std::string("SELECT r.id FROM record r WHERE ") + condition + " = ?1 ORDER BY r.id");
    rows.bind(1, key);
    while (rows.step()) {
        records_.push_back({rows.number(0), 0, 0});
    }
    return rows.error();
}

// Most records of a directory hold the same properties in the same places.
std::string_view RecordBlock::keepName(std::string_view name, std::size_t place) {
    if (place < names_.size()) {
        if (names_[place] != name) {
            names_[place] = arena_.keep(name);
        }
        return names_[place];
    }
    names_.push_back(arena_.keep(name));
    return names_.back();
}

int RecordBlock::readProperties(sqlite3* database, const char* condition, std::int64_t key) {
    SqliteStatement rows(
        database, std::string("SELECT p.record, p.position, p.name FROM record r CROSS JOIN property p "
                              "ON p.record = r.id WHERE ") +
                      condition + " = ?1 ORDER BY r.id, p.position");
    rows.bind(1, key);
    auto record = records_.begin();
    while (rows.step()) {
        const std::int64_t id = rows.number(0);
        while (record != records_.end() && record->id != id) {
            ++record;
        }
        if (record == records_.end()) {
            return SQLITE_CORRUPT;
        }
        if (record->propertyCount == 0) {
            record->firstProperty = properties_.size();
        }
        positions_.push_back(rows.number(1));
        properties_.push_back({keepName(rows.text(2), record->propertyCount), 0, 0});
        ++record->propertyCount;
    }
    return rows.error();
}

int RecordBlock::readValues(sqlite3* database, const char* condition, std::int64_t key) {
    SqliteStatement rows(database,
                         std::string("SELECT v.record, v.property, v.value FROM record r CROSS JOIN value v "
                                     "ON v.record = r.id WHERE ") +
                             condition + " = ?1 ORDER BY r.id, v.property, v.position");
    rows.bind(1, key);
    auto record = records_.begin();
    std::size_t inRecord = 0; // the property of *record that values are read for
    while (rows.step()) {
        const std::int64_t id = rows.number(0);
        while (record != records_.end() && record->id != id) {
            ++record;
            inRecord = 0;
        }
        if (record == records_.end()) {
            return SQLITE_CORRUPT;
        }
        const std::int64_t position = rows.number(1);
        while (inRecord < record->propertyCount && positions_[record->firstProperty + inRecord] != position) {
            ++inRecord;
        }
        if (inRecord == record->propertyCount) {
            return SQLITE_CORRUPT;
        }
        Property& property = properties_[record->firstProperty + inRecord];
        if (property.valueCount == 0) {
            property.firstValue = values_.size();
        }
        values_.push_back(arena_.keep(rows.text(2)));
        ++property.valueCount;
    }
    return rows.error();
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

const RecordBlock::Property* RecordBlock::property(const Record& record, std::string_view name) const {
    const auto all = properties(record);
    const auto place = std::ranges::find(all, name, &Property::name);
    return place == all.end() ? nullptr : &*place;
}

} // namespace platform
