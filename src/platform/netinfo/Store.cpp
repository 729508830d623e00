#include "platform/netinfo/Store.h"

#include "platform/netinfo/RecordContent.h"
#include "platform/netinfo/Sqlite.h"
#include "platform/netinfo/StoreSchema.h"
#include "platform/netinfo/StoreUpgrade.h"
#include "platform/netinfo/StoreWait.h"
#include "platform/posix/LetterCase.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <map>
#include <utility>

namespace platform {

struct Store::Connection {
    SqliteConnection database;
    /// Prepared statements by their SQL: filling a directory runs the same few of them thousands of times.
    std::map<std::string, std::unique_ptr<SqliteStatement>, std::less<>> statements;

    SqliteStatement& statement(std::string_view sql) {
        auto place = statements.find(sql);
        if (place == statements.end()) {
            place = statements.emplace(sql, std::make_unique<SqliteStatement>(database.get(), sql)).first;
        }
        place->second->reset();
        return *place->second;
    }

    /// Runs a statement that returns no rows. Returns SQLITE_OK, or what failed.
    template <class... Values>
    int run(std::string_view sql, const Values&... values) {
        SqliteStatement& change = statement(sql);
        int parameter = 0;
        (change.bind(++parameter, values), ...);
        while (change.step()) {
        }
        const int error = change.error();
        change.reset();
        return error;
    }
};

namespace {

/// A number in the header of an SQLite file (https://www.sqlite.org/fileformat.html): 4 bytes, big-endian.
std::uint32_t headerNumber(std::span<const char> header, std::size_t offset) {
    std::uint32_t number = 0;
    for (const char each : header.subspan(offset, 4)) {
        number = number << 8U | static_cast<unsigned char>(each);
    }
    return number;
}

/// The first property of that name; if there is none, a new one at the end.
StoredProperty& propertyIn(std::vector<StoredProperty>& properties, std::string_view name) {
    const auto place = std::ranges::find(properties, name, &StoredProperty::name);
    return place != properties.end() ? *place
                                     : properties.emplace_back(StoredProperty{std::string(name), {}});
}

} // namespace

Store::Store(const std::string& file, Opening opening, int patience)
    : file_(file), patience_(patience), connection_(std::make_unique<Connection>()) {
    open(opening);
    if (!status_.isOk()) {
        return;
    }
    sqlite3_busy_timeout(connection_->database.get(), patience * 1000);
    if (opening == Opening::Create) {
        execute("BEGIN EXCLUSIVE");
        create();
    } else {
        begin();
    }
}

Store::~Store() = default; // closing rolls back

void Store::begin() {
    execute("BEGIN EXCLUSIVE");
    if (!status_.isOk()) {
        return;
    }
    SqliteStatement application(connection_->database.get(), "PRAGMA application_id");
    SqliteStatement version(connection_->database.get(), "PRAGMA user_version");
    const bool isStore = application.step() && application.number(0) == storeApplicationId && version.step();
    const std::int64_t layout = isStore ? version.number(0) : 0;
    if (layout == storeVersionOfRows) {
        application.reset(); // tables cannot be dropped while a statement is reading
        version.reset();
        check(upgradeStore(connection_->database.get()));
    } else if (layout > storeVersion) {
        fail(newerStoreText);
    } else if (layout != storeVersion) {
        check(SQLITE_NOTADB);
    }
}

Status Store::checkVersion(const std::string& file) {
    constexpr std::size_t versionOffset = 60;
    constexpr std::size_t applicationOffset = 68;
    std::array<char, 100> header{};
    std::ifstream in(file, std::ios::binary);
    if (in.read(header.data(), header.size()) &&
        headerNumber(header, applicationOffset) == std::uint32_t{storeApplicationId} &&
        headerNumber(header, versionOffset) > std::uint32_t{storeVersion}) {
        return Status::failure("cannot use the directory", file, newerStoreText);
    }
    return {};
}

void Store::open(Opening opening) {
    int flags = SQLITE_OPEN_READWRITE | sqliteOwnConnection;
    if (opening == Opening::Create) {
        if (std::filesystem::exists(file_)) {
            return fail("it exists; choose another file");
        }
        flags |= SQLITE_OPEN_CREATE;
    }
    sqlite3* opened = nullptr;
    const int error = sqlite3_open_v2(file_.c_str(), &opened, flags, nullptr);
    connection_->database.reset(opened);
    check(error);
    // SQLite opens a file read-only when writing is forbidden.
    if (status_.isOk() && sqlite3_db_readonly(opened, "main") == 1) {
        check(SQLITE_READONLY);
    }
}

void Store::create() {
    execute(("PRAGMA application_id = " + std::to_string(storeApplicationId)).c_str());
    execute(("PRAGMA user_version = " + std::to_string(storeVersion)).c_str());
    execute(storeSchema);
}

void Store::execute(const char* sql) {
    if (status_.isOk()) {
        check(sqlite3_exec(connection_->database.get(), sql, nullptr, nullptr, nullptr));
    }
}

template <class... Values>
void Store::change(std::string_view sql, const Values&... values) {
    if (status_.isOk()) {
        check(connection_->run(sql, values...));
    }
}

void Store::check(int error) {
    if (error != SQLITE_OK) {
        fail(storeProblem(file_, error, patience_));
    }
}

void Store::fail(std::string why) {
    if (status_.isOk()) {
        status_ = Status::failure("cannot change the directory", shownStore(file_), std::move(why));
    }
}

std::optional<Store::Record> Store::child(Record parent, std::string_view name) {
    if (!status_.isOk()) {
        return std::nullopt;
    }
    SqliteStatement& row = connection_->statement("SELECT id FROM record WHERE parent = ?1 AND name = ?2");
    if (row.bind(1, parent).bind(2, name).step()) {
        return row.number(0);
    }
    check(row.error());
    return std::nullopt;
}

std::optional<std::string> Store::childInOtherCase(Record parent, std::string_view name) {
    if (!status_.isOk()) {
        return std::nullopt;
    }
    const std::string wanted = lowercased(name);
    SqliteStatement& row = connection_->statement("SELECT name FROM record WHERE parent = ?1");
    row.bind(1, parent);
    while (row.step()) {
        if (row.text(0) != name && lowercased(row.text(0)) == wanted) {
            return std::string(row.text(0));
        }
    }
    check(row.error());
    return std::nullopt;
}

std::optional<Store::Record> Store::find(std::span<const std::string> components) {
    std::optional<Record> place = root;
    for (const auto& component : components) {
        place = child(*place, component);
        if (!place) {
            break;
        }
    }
    return place;
}

RecordBlock Store::children(Record parent) {
    if (!status_.isOk()) {
        return {};
    }
    int error = SQLITE_OK;
    auto block = RecordBlock::children(connection_->database.get(), parent, &error);
    check(error);
    const auto isWhole = [&](const RecordBlock::Record& record) { return block.isWhole(record); };
    if (!std::ranges::all_of(block.records(), isWhole)) {
        check(SQLITE_CORRUPT);
    }
    return status_.isOk() ? std::move(block) : RecordBlock();
}

void Store::addStandingRecords() {
    if (status_.isOk()) {
        check(platform::addStandingRecords(connection_->database.get()));
    }
}

Store::Record Store::addRecord(Record parent, std::string_view name) {
    change("INSERT INTO record (parent, name) VALUES (?1, ?2)", parent, name);
    const Record record = sqlite3_last_insert_rowid(connection_->database.get());
    const std::string value(name);
    setValues(record, "name", std::span(&value, 1));
    return record;
}

Store::Record Store::addRecord(Record parent, std::span<const StoredProperty> properties) {
    change("INSERT INTO record (parent, name) VALUES (?1, ?2)", parent,
           std::string_view(properties.front().values.front()));
    const Record record = sqlite3_last_insert_rowid(connection_->database.get());
    save(record, properties);
    return record;
}

void Store::rename(Record record, std::string_view name) {
    change("UPDATE record SET name = ?2 WHERE id = ?1", record, name);
    const std::string value(name);
    setValues(record, "name", std::span(&value, 1));
}

void Store::removeRecord(Record record) {
    if (!status_.isOk()) {
        return;
    }
    // UNION drops duplicates, so the recursion ends even if damage has left a circle of parents.
    const std::string below = "WITH RECURSIVE below (id) AS (SELECT ?1 UNION SELECT r.id FROM record r JOIN "
                              "below ON r.parent = below.id) ";
    SqliteStatement& rootBelow = connection_->statement(below + "SELECT 1 FROM below WHERE id = ?2");
    if (rootBelow.bind(1, record).bind(2, root).step()) {
        check(SQLITE_CORRUPT);
    }
    check(rootBelow.error());
    rootBelow.reset();
    change(below + "DELETE FROM record WHERE id IN below", record);
}

std::vector<StoredProperty> Store::load(Record record) {
    std::vector<StoredProperty> properties;
    if (!status_.isOk()) {
        return properties;
    }
    SqliteStatement& row = connection_->statement("SELECT content FROM record WHERE id = ?1");
    if (row.bind(1, record).step() && !unpackContent(row.text(0), &properties)) {
        check(SQLITE_CORRUPT);
    }
    check(row.error());
    row.reset();
    return properties;
}

void Store::save(Record record, std::span<const StoredProperty> properties) {
    if (!status_.isOk()) {
        return;
    }
    const std::string content = packedContent(properties);
    SqliteStatement& update = connection_->statement("UPDATE record SET content = ?1 WHERE id = ?2");
    update.bindBytes(1, content).bind(2, record);
    while (update.step()) {
    }
    check(update.error());
}

std::optional<std::vector<std::string>> Store::values(Record record, std::string_view property) {
    std::vector<StoredProperty> properties = load(record);
    const auto place = std::ranges::find(properties, property, &StoredProperty::name);
    if (place == properties.end()) {
        return std::nullopt;
    }
    return std::move(place->values);
}

void Store::setValues(Record record, std::string_view property, std::span<const std::string> values) {
    std::vector<StoredProperty> properties = load(record);
    propertyIn(properties, property).values.assign(values.begin(), values.end());
    save(record, properties);
}

void Store::appendValues(Record record, std::string_view property, std::span<const std::string> values) {
    std::vector<StoredProperty> properties = load(record);
    auto& stored = propertyIn(properties, property).values;
    stored.insert(stored.end(), values.begin(), values.end());
    save(record, properties);
}

void Store::removeProperty(Record record, std::string_view property) {
    std::vector<StoredProperty> properties = load(record);
    const auto place = std::ranges::find(properties, property, &StoredProperty::name);
    if (place != properties.end()) {
        properties.erase(place);
        save(record, properties);
    }
}

Status Store::commit() {
    execute("COMMIT");
    return status_;
}

void Store::undo() {
    execute("ROLLBACK");
    begin();
}

Store::Step::Step(Store& store) : store_(store) {
    store_.execute("SAVEPOINT step");
}

Store::Step::~Step() {
    if (!isKept_) {
        store_.execute("ROLLBACK TO step; RELEASE step");
    }
}

void Store::Step::keep() {
    store_.execute("RELEASE step");
    isKept_ = true;
}

} // namespace platform
