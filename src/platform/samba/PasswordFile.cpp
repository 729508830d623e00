#include "platform/samba/PasswordFile.h"

#include "platform/posix/LetterCase.h"
#include "platform/posix/Secret.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <span>
#include <string_view>
#include <thread>

#include <fcntl.h>
#include <tdb.h>

namespace platform {

namespace {

constexpr std::uint32_t knownVersion = 4; ///< of tdbsam's records, since Samba 3.4
constexpr std::uint32_t disabledFlag = 1; ///< "D" in smbpasswd(5)
constexpr std::size_t hashLength = 16;

// An account's record: numbers of four bytes, the lowest first, and strings, each after its length.
constexpr int timesBeforeTexts = 7;
constexpr int texts = 12;

/// Reads a record from start to end. After a field that does not fit, all further fields are empty.
class Reader {
  public:
    explicit Reader(std::string_view record) : rest_(record) {}

    [[nodiscard]] bool isOk() const { return isOk_; }

    std::uint32_t number() {
        const std::string_view bytes = take(4);
        std::uint32_t value = 0;
        for (std::size_t index = bytes.size(); index > 0; --index) {
            value = value << 8 | static_cast<unsigned char>(bytes[index - 1]);
        }
        return value;
    }

    std::string_view text() { return take(number()); }

  private:
    std::string_view take(std::size_t length) {
        if (length > rest_.size()) {
            isOk_ = false;
            rest_ = {};
            return {};
        }
        const std::string_view taken = rest_.substr(0, length);
        rest_.remove_prefix(length);
        return taken;
    }

    std::string_view rest_;
    bool isOk_ = true;
};

struct Entry {
    SambaUser user;
    std::uint32_t number = 0; ///< the last number of the account's SID
};

std::optional<Entry> entryOf(std::string_view record) {
    Reader reader(record);
    for (int index = 0; index < timesBeforeTexts; ++index) {
        reader.number();
    }
    Entry entry;
    for (int index = 0; index < texts; ++index) {
        const std::string_view text = reader.text();
        if (index == 0) {
            entry.user.name = text.substr(0, text.find('\0'));
        }
    }
    entry.number = reader.number();
    reader.number(); // the group's
    reader.text();   // the LAN Manager hash
    entry.user.hasPassword = reader.text().size() == hashLength;
    reader.text(); // former passwords
    entry.user.isDisabled = (reader.number() & disabledFlag) != 0;
    return reader.isOk() && !entry.user.name.empty() ? std::optional(std::move(entry)) : std::nullopt;
}

void appendNumber(std::string& bytes, std::size_t value) {
    for (int index = 0; index < 4; ++index, value >>= 8) {
        bytes.push_back(static_cast<char>(value & 0xff));
    }
}

/// A readable record with another name, which is its first text.
std::string renamed(std::string_view record, std::string_view name) {
    constexpr std::size_t textStart = std::size_t{4} * timesBeforeTexts;
    const std::size_t textEnd = textStart + 4 + Reader(record.substr(textStart)).number();
    std::string bytes;
    bytes.reserve(record.size() + name.size() + 1); // so that growing leaves no copy of the hashes in memory
    bytes.append(record.substr(0, textStart));
    appendNumber(bytes, name.size() + 1);
    bytes.append(name).append(1, '\0').append(record.substr(textEnd));
    return bytes; // not what append() returns, which would be copied
}

TDB_DATA dataOf(std::string& bytes) {
    return {reinterpret_cast<unsigned char*>(bytes.data()), bytes.size()};
}

std::string keyOf(const std::string& user) {
    return "USER_" + lowercased(user);
}

/// The key under which the name of the account with that number is found.
std::string keyOf(std::uint32_t number) {
    std::array<char, 16> key{};
    return {key.data(), static_cast<std::size_t>(std::snprintf(key.data(), key.size(), "RID_%08x", number))};
}

/// The value of a key, if there is one. Keys in the file end with a NUL. A value holds hashes, so it is wiped
/// at the end.
class Value {
  public:
    Value(tdb_context* database, const std::string& key) {
        std::string bytes = key + '\0';
        data_ = tdb_fetch(database, dataOf(bytes));
        error_ = data_.dptr == nullptr ? tdb_error(database) : TDB_SUCCESS;
    }

    ~Value() {
        if (data_.dptr != nullptr) {
            wipe(std::span(reinterpret_cast<char*>(data_.dptr), data_.dsize));
            std::free(data_.dptr); // NOLINT(cppcoreguidelines-no-malloc): tdb allocates it with malloc
        }
    }

    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;

    [[nodiscard]] bool isThere() const { return data_.dptr != nullptr; }

    /// Why there is no value.
    [[nodiscard]] TDB_ERROR error() const { return error_; }

    [[nodiscard]] std::string_view bytes() const {
        return {reinterpret_cast<const char*>(data_.dptr), data_.dsize};
    }

  private:
    TDB_DATA data_{};
    TDB_ERROR error_ = TDB_SUCCESS;
};

/// Whether another program has a lock that is in the way of one of this kind (F_RDLCK, F_WRLCK).
bool isLocked(tdb_context* database, int kind) {
    struct flock lock {};

    lock.l_type = static_cast<short>(kind);
    lock.l_whence = SEEK_SET;
    return ::fcntl(tdb_fd(database), F_GETLK, &lock) != 0 || lock.l_type != F_UNLCK;
}

/// A database that is opened only for reading takes no lock, so that half a change could be read.
bool isBeingWritten(tdb_context* database) {
    return isLocked(database, F_RDLCK);
}

using Database = std::unique_ptr<tdb_context, int (*)(tdb_context*)>;

Database opened(const std::string& file, int mode) {
    return {tdb_open(file.c_str(), 0, TDB_DEFAULT, mode | O_CLOEXEC, 0), tdb_close};
}

bool hasKnownVersion(tdb_context* database) {
    const Value version(database, "INFO/version");
    return version.isThere() && Reader(version.bytes()).number() == knownVersion;
}

Status failure(const std::string& why) {
    return Status::failure("cannot use", "Samba's password database", why);
}

Status inUse() {
    return failure("another program is using Samba's password database; try again later");
}

/// Returns false when that is not so within `patience`.
template <class Test>
bool waitUntil(Test test, std::chrono::milliseconds patience) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!test()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

/// Opens the file and begins a transaction; closing it takes back what has not been committed. Null when
/// there is no file. It is opened for writing even to be read only, because otherwise tdb refuses a file in
/// which another program is storing something, or was killed while it did.
Result<Database> begun(const std::string& file, std::chrono::milliseconds patience) {
    errno = 0;
    Database database = opened(file, O_RDWR);
    if (!database && errno != ENOENT) {
        // tdb refuses a damaged file without a system's error.
        return failure(Status::ofErrno("cannot open", file, errno == 0 ? EIO : errno).text());
    }
    // tdb itself would wait without end for a program that uses the file without a transaction.
    const auto begins = [&] {
        return !isLocked(database.get(), F_WRLCK) && tdb_transaction_start_nonblock(database.get()) == 0;
    };
    if (database && !waitUntil(begins, patience)) {
        return inUse();
    }
    return database;
}

bool store(tdb_context* database, std::string key, std::string& value) {
    key += '\0';
    return tdb_store(database, dataOf(key), dataOf(value), TDB_REPLACE) == 0;
}

/// Ok when there is no such key.
bool remove(tdb_context* database, std::string key) {
    key += '\0';
    return tdb_delete(database, dataOf(key)) == 0 || tdb_error(database) == TDB_ERR_NOEXIST;
}

/// Within a transaction. False when the entry cannot be read or the file not be written.
bool move(tdb_context* database, const std::string& user, const std::string& newName) {
    const Value record(database, keyOf(user));
    if (!record.isThere()) {
        return record.error() == TDB_ERR_NOEXIST;
    }
    const auto entry = entryOf(record.bytes());
    if (!entry || !remove(database, keyOf(user)) || !remove(database, keyOf(entry->number))) {
        return false;
    }
    if (newName.empty()) {
        return true;
    }
    const Value left(database, keyOf(newName)); // by an account of that name that is gone
    const auto leftEntry = left.isThere() ? entryOf(left.bytes()) : std::nullopt;
    if (leftEntry && !remove(database, keyOf(leftEntry->number))) {
        return false;
    }
    std::string bytes = renamed(record.bytes(), newName);
    std::string name = lowercased(newName) + '\0';
    const bool isStored =
        store(database, keyOf(newName), bytes) && store(database, keyOf(entry->number), name);
    wipe(bytes);
    return isStored;
}

Status notMoved(const std::string& file, const std::string& user) {
    return failure("the entry of " + user + " cannot be changed in " + file);
}

} // namespace

Result<bool> awaitPasswordFile(const std::string& file, const std::string& user,
                               std::chrono::milliseconds patience) {
    const auto database = begun(file, patience);
    if (!database.isOk()) {
        return database.status();
    }
    const bool isKnown = *database == nullptr || hasKnownVersion(database->get());
    const bool canMove = *database == nullptr || !isKnown || move(database->get(), user, user);
    return canMove ? Result(isKnown) : notMoved(file, user);
}

Status moveInPasswordFile(const std::string& file, const std::string& user, const std::string& newName,
                          std::chrono::milliseconds patience) {
    const auto database = begun(file, patience);
    if (!database.isOk() || *database == nullptr || !hasKnownVersion(database->get())) {
        return database.status();
    }
    if (!move(database->get(), user, newName)) {
        return notMoved(file, user);
    }
    // The commit, too, would wait without end for programs that read what is being replaced.
    if (!waitUntil([&] { return !isLocked(database->get(), F_WRLCK); }, patience)) {
        return inUse();
    }
    return tdb_transaction_commit(database->get()) == 0 ? Status() : notMoved(file, user);
}

std::optional<std::optional<SambaUser>> userInPasswordFile(const std::string& file, const std::string& user) {
    const Database database = opened(file, O_RDONLY);
    if (!database || isBeingWritten(database.get()) || !hasKnownVersion(database.get())) {
        return std::nullopt;
    }
    const Value record(database.get(), keyOf(user));
    if (isBeingWritten(database.get())) {
        return std::nullopt;
    }
    if (record.isThere()) {
        auto known = entryOf(record.bytes());
        if (!known) {
            return std::nullopt; // the account has a record, but an unreadable one
        }
        return std::optional(std::move(known->user));
    }
    const bool isASCII = std::ranges::all_of(user, [](unsigned char c) { return c < 0x80; });
    if (record.error() != TDB_ERR_NOEXIST || !isASCII) {
        // In a damaged file an account that is not found may still exist. And Samba has small letters of its
        // own for a few that are not ASCII.
        return std::nullopt;
    }
    return std::optional<SambaUser>();
}

} // namespace platform
