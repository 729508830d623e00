#include "review/HistoryStore.h"

#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/netinfo/RecordContent.h"
#include "platform/posix/FileDescriptor.h"

#include <cerrno>
#include <charconv>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace review {

namespace {

using platform::FileDescriptor;
using platform::Result;
using platform::SqliteStatement;
using platform::Status;
using platform::StoredProperty;

/// Marks an SQLite file as a history (the bytes "BrHi").
constexpr int applicationId = 0x42724869;
constexpr int version = 1;
constexpr int waitMilliseconds = 5000;

constexpr const char* schema = R"(
CREATE TABLE entry (
    number INTEGER PRIMARY KEY AUTOINCREMENT,
    time INTEGER NOT NULL,
    user TEXT NOT NULL,
    title TEXT NOT NULL,
    failed INTEGER NOT NULL,
    undone INTEGER NOT NULL DEFAULT 0,
    undoes INTEGER NOT NULL,
    content BLOB NOT NULL
);
)";

// An entry's content is packed like a record's (RecordContent.h): each part is a name with a list of strings.
// The parts "before" and "after" are properties of the record part that they follow.
constexpr const char* runPart = "run";
constexpr const char* recordPart = "record";
constexpr const char* beforePart = "before";
constexpr const char* afterPart = "after";
constexpr const char* filePart = "file";
constexpr const char* folderPart = "folder";
constexpr const char* present = "1";

// What failed; each is a key of the string table.
constexpr const char* cannotOpen = "cannot open the history";
constexpr const char* cannotWrite = "cannot write the history";
constexpr const char* cannotRead = "cannot read the history";

template <class State>
std::string presence(const State& state) {
    return state ? present : "";
}

void addProperties(const char* part, const RecordChange::State& state, std::vector<StoredProperty>* parts) {
    if (!state) {
        return;
    }
    for (const DirectoryView::Property& property : *state) {
        StoredProperty stored{part, {property.name}};
        stored.values.insert(stored.values.end(), property.values.begin(), property.values.end());
        parts->push_back(std::move(stored));
    }
}

void addFolder(const FolderState& state, std::vector<std::string>* values) {
    values->push_back(std::to_string(state.owner));
    values->push_back(std::to_string(state.group));
    values->push_back(std::to_string(state.mode));
    values->push_back(state.accounts);
}

std::string packed(const HistoryEntry& entry) {
    std::vector<StoredProperty> parts;
    for (const PastRun& run : entry.runs) {
        StoredProperty part{runPart, {run.tool, run.output, run.hasFailed ? present : ""}};
        part.values.insert(part.values.end(), run.arguments.begin(), run.arguments.end());
        parts.push_back(std::move(part));
    }
    for (const RecordChange& record : entry.records) {
        parts.push_back({recordPart, {record.path, presence(record.before), presence(record.after)}});
        addProperties(beforePart, record.before, &parts);
        addProperties(afterPart, record.after, &parts);
    }
    for (const FileChange& file : entry.files) {
        parts.push_back({filePart,
                         {file.path, presence(file.before), file.before.value_or(""), presence(file.after),
                          file.after.value_or("")}});
    }
    for (const FolderStep& folder : entry.folders) {
        StoredProperty part{folderPart, {folder.path}};
        addFolder(folder.before, &part.values);
        addFolder(folder.after, &part.values);
        parts.push_back(std::move(part));
    }
    return platform::packedContent(parts);
}

/// Reads the strings of a part in order. A missing string reads as empty; unpack notices that it was missing.
class Texts {
  public:
    explicit Texts(StoredProperty& part) : values_(part.values) {}

    [[nodiscard]] std::string next() {
        return next_ < values_.size() ? std::move(values_[next_++]) : std::string();
    }

    [[nodiscard]] std::vector<std::string> rest() {
        std::vector<std::string> texts;
        while (next_ < values_.size()) {
            texts.push_back(next());
        }
        return texts;
    }

    [[nodiscard]] bool isPresent() { return next() == present; }

    [[nodiscard]] unsigned number() {
        const std::string text = next();
        unsigned value = 0;
        std::from_chars(text.data(), text.data() + text.size(), value);
        return value;
    }

    [[nodiscard]] FolderState folder() {
        FolderState state;
        state.owner = number();
        state.group = number();
        state.mode = number();
        state.accounts = next();
        return state;
    }

    [[nodiscard]] std::optional<std::string> bytes() {
        const bool isThere = isPresent();
        std::string text = next();
        return isThere ? std::optional(std::move(text)) : std::nullopt;
    }

  private:
    std::vector<std::string>& values_;
    std::size_t next_ = 0;
};

void unpackPart(StoredProperty& part, HistoryEntry* entry) {
    Texts texts(part);
    if (part.name == runPart) {
        PastRun run;
        run.tool = texts.next();
        run.output = texts.next();
        run.hasFailed = texts.isPresent();
        run.arguments = texts.rest();
        entry->runs.push_back(std::move(run));
    } else if (part.name == recordPart) {
        RecordChange record;
        record.path = texts.next();
        if (texts.isPresent()) {
            record.before.emplace();
        }
        if (texts.isPresent()) {
            record.after.emplace();
        }
        entry->records.push_back(std::move(record));
    } else if (part.name == filePart) {
        FileChange file;
        file.path = texts.next();
        file.before = texts.bytes();
        file.after = texts.bytes();
        entry->files.push_back(std::move(file));
    } else if (part.name == folderPart) {
        FolderStep folder;
        folder.path = texts.next();
        folder.before = texts.folder();
        folder.after = texts.folder();
        entry->folders.push_back(std::move(folder));
    } else if (!entry->records.empty()) {
        RecordChange& record = entry->records.back();
        RecordChange::State& state = part.name == beforePart ? record.before : record.after;
        if (state) {
            std::string name = texts.next();
            state->push_back({std::move(name), texts.rest()});
        }
    }
}

/// Returns false, reading nothing, unless the content is exactly what the entry would be packed into. Missing
/// or unknown parts are damage too: an undo would then restore something other than what was there.
bool unpack(std::string_view content, HistoryEntry* entry) {
    std::vector<StoredProperty> parts;
    if (!platform::unpackContent(content, &parts)) {
        return false;
    }
    HistoryEntry read;
    for (StoredProperty& part : parts) {
        unpackPart(part, &read);
    }
    if (packed(read) != content) {
        return false;
    }
    entry->runs = std::move(read.runs);
    entry->records = std::move(read.records);
    entry->files = std::move(read.files);
    entry->folders = std::move(read.folders);
    return true;
}

int execute(sqlite3* database, const std::string& sql) {
    return sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr);
}

std::int64_t numberOf(sqlite3* database, const std::string& sql) {
    SqliteStatement statement(database, sql);
    return statement.step() ? statement.number(0) : 0;
}

int finish(SqliteStatement& statement) {
    while (statement.step()) {
    }
    return statement.error();
}

/// Makes the tables in a new file. Returns SQLITE_NOTADB when the file is something else.
int prepare(sqlite3* database) {
    if (const int error = execute(database, "BEGIN IMMEDIATE"); error != SQLITE_OK) {
        return error;
    }
    if (numberOf(database, "SELECT count(*) FROM sqlite_master") == 0) {
        const int error =
            execute(database, "PRAGMA application_id = " + std::to_string(applicationId) +
                                  "; PRAGMA user_version = " + std::to_string(version) + ";" + schema);
        return error == SQLITE_OK ? execute(database, "COMMIT") : error;
    }
    execute(database, "ROLLBACK");
    const bool isHistory = numberOf(database, "PRAGMA application_id") == applicationId &&
                           numberOf(database, "PRAGMA user_version") == version;
    return isHistory ? SQLITE_OK : SQLITE_NOTADB;
}

/// When an undo is itself undone, what it had undone counts as done again, and so on.
int markUndone(sqlite3* database, std::int64_t number) {
    int error = SQLITE_OK;
    for (bool isUndone = true; error == SQLITE_OK && number != 0; isUndone = !isUndone) {
        SqliteStatement mark(database, "UPDATE entry SET undone = ?2 WHERE number = ?1");
        error = finish(mark.bind(1, number).bind(2, std::int64_t{isUndone}));
        SqliteStatement undoes(database, "SELECT undoes FROM entry WHERE number = ?1");
        number = undoes.bind(1, number).step() ? undoes.number(0) : 0;
    }
    return error;
}

/// Keeps the newest entry, however large it is.
int removeOldest(sqlite3* database) {
    SqliteStatement remove(database,
                           "DELETE FROM entry WHERE number IN (SELECT number FROM (SELECT number, "
                           "row_number() OVER newest AS place, sum(length(content)) OVER newest AS "
                           "total FROM entry WINDOW newest AS (ORDER BY number DESC)) WHERE place > "
                           "?1 OR (place > 1 AND total > ?2))");
    return finish(remove.bind(1, std::int64_t{HistoryStore::entryLimit})
                      .bind(2, static_cast<std::int64_t>(HistoryStore::byteLimit)));
}

} // namespace

std::string HistoryStore::shownFile() const {
    return platform::Host::current().paths().shown(file_);
}

Status HistoryStore::failure(const char* what, int error) const {
    const bool isForeign = (error & 0xff) == SQLITE_NOTADB || (error & 0xff) == SQLITE_CORRUPT;
    return Status::failure(
        NSLocalizedString(what), shownFile(),
        isForeign ? NSLocalizedString("it is damaged, or was written by a newer Brindle; move it away, and a "
                                      "new one will be started")
                  : stringWithFormat(
                        NSLocalizedString("%@; check who may write to it, and whether its disk is full"),
                        std::string(sqlite3_errstr(error))));
}

Result<platform::SqliteConnection> HistoryStore::open() const {
    std::error_code ignored; // without the folder, opening the file fails
    std::filesystem::create_directories(std::filesystem::path(file_).parent_path(), ignored);
    // Private, because it contains settings files, which not everybody may read.
    const FileDescriptor made(::open(file_.c_str(), O_CREAT | O_RDWR | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!made.isOpen()) {
        return Status::ofErrno(NSLocalizedString(cannotOpen), shownFile(), errno);
    }
    sqlite3* opened = nullptr;
    int error = sqlite3_open_v2(file_.c_str(), &opened, SQLITE_OPEN_READWRITE | platform::sqliteOwnConnection,
                                nullptr);
    platform::SqliteConnection database(opened);
    if (error == SQLITE_OK) {
        sqlite3_busy_timeout(opened, waitMilliseconds);
        error = prepare(opened);
    }
    return error == SQLITE_OK ? Result<platform::SqliteConnection>(std::move(database))
                              : failure(cannotOpen, error);
}

int HistoryStore::insert(sqlite3* database, const HistoryEntry& entry, std::int64_t* number) const {
    if (const int error = execute(database, "BEGIN IMMEDIATE"); error != SQLITE_OK) {
        return error;
    }
    const std::string content = packed(entry);
    SqliteStatement row(database, "INSERT INTO entry (time, user, title, failed, undoes, content) VALUES "
                                  "(?1, ?2, ?3, ?4, ?5, ?6)");
    row.bind(1, entry.time).bind(2, entry.user).bind(3, entry.title);
    row.bind(4, std::int64_t{entry.hasFailed}).bind(5, entry.undoes).bindBytes(6, content);
    int error = finish(row);
    *number = sqlite3_last_insert_rowid(database);
    if (error == SQLITE_OK && entry.undoes != 0 && !entry.hasFailed) {
        error = markUndone(database, entry.undoes);
    }
    if (error == SQLITE_OK) {
        error = removeOldest(database);
    }
    return error == SQLITE_OK ? execute(database, "COMMIT") : error;
}

Result<std::int64_t> HistoryStore::add(const HistoryEntry& entry) const {
    const auto database = open();
    if (!database.isOk()) {
        return database.status();
    }
    std::int64_t number = 0;
    const int error = insert(database->get(), entry, &number);
    return error == SQLITE_OK ? Result<std::int64_t>(number) : failure(cannotWrite, error);
}

Result<std::vector<HistoryEntry>> HistoryStore::entries() const {
    std::vector<HistoryEntry> entries;
    Status status = visit([&entries](HistoryEntry&& entry) {
        entries.push_back(std::move(entry));
        return true;
    });
    return status.isOk() ? Result<std::vector<HistoryEntry>>(std::move(entries)) : status;
}

Status HistoryStore::visit(const std::function<bool(HistoryEntry&& entry)>& takes) const {
    if (::access(file_.c_str(), F_OK) != 0 && errno == ENOENT) {
        return {};
    }
    const auto database = open();
    if (!database.isOk()) {
        return database.status();
    }
    SqliteStatement rows(database->get(), "SELECT number, time, user, title, failed, undone, undoes, content "
                                          "FROM entry ORDER BY number DESC");
    while (rows.step()) {
        HistoryEntry entry;
        entry.number = rows.number(0);
        entry.time = rows.number(1);
        entry.user = rows.text(2);
        entry.title = rows.text(3);
        entry.hasFailed = rows.number(4) != 0;
        entry.isUndone = rows.number(5) != 0;
        entry.undoes = rows.number(6);
        entry.isDamaged = !unpack(rows.text(7), &entry); // the other entries are still read
        if (!takes(std::move(entry))) {
            return {};
        }
    }
    return rows.error() == SQLITE_OK ? Status() : failure(cannotRead, rows.error());
}

} // namespace review
