#include "platform/samba/PasswordFile.h"

#include "platform/posix/LetterCase.h"
#include "platform/posix/Secret.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <string_view>

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
constexpr int numbersAfterTexts = 2;

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

std::optional<SambaUser> userOf(std::string_view record) {
    Reader reader(record);
    for (int index = 0; index < timesBeforeTexts; ++index) {
        reader.number();
    }
    SambaUser user;
    for (int index = 0; index < texts; ++index) {
        const std::string_view text = reader.text();
        if (index == 0) {
            user.name = text.substr(0, text.find('\0'));
        }
    }
    for (int index = 0; index < numbersAfterTexts; ++index) {
        reader.number();
    }
    reader.text(); // the LAN Manager hash
    user.hasPassword = reader.text().size() == hashLength;
    reader.text(); // former passwords
    user.isDisabled = (reader.number() & disabledFlag) != 0;
    return reader.isOk() && !user.name.empty() ? std::optional(std::move(user)) : std::nullopt;
}

/// The value of a key, if there is one. Keys in the file end with a NUL. A value holds hashes, so it is wiped
/// at the end.
class Value {
  public:
    Value(tdb_context* database, const std::string& key) {
        std::string bytes = key + '\0';
        data_ = tdb_fetch(database, {reinterpret_cast<unsigned char*>(bytes.data()), bytes.size()});
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

/// True when another program is writing. A database that is opened only for reading takes no lock, so that
/// half a change could be read.
bool isBeingWritten(tdb_context* database) {
    struct flock lock {};

    lock.l_type = F_RDLCK;
    lock.l_whence = SEEK_SET;
    return ::fcntl(tdb_fd(database), F_GETLK, &lock) != 0 || lock.l_type != F_UNLCK;
}

} // namespace

std::optional<std::optional<SambaUser>> userInPasswordFile(const std::string& file, const std::string& user) {
    const std::unique_ptr<tdb_context, int (*)(tdb_context*)> database(
        tdb_open(file.c_str(), 0, TDB_DEFAULT, O_RDONLY | O_CLOEXEC, 0), tdb_close);
    if (!database || isBeingWritten(database.get())) {
        return std::nullopt;
    }
    const Value version(database.get(), "INFO/version");
    if (!version.isThere() || Reader(version.bytes()).number() != knownVersion) {
        return std::nullopt;
    }
    const Value record(database.get(), "USER_" + lowercased(user));
    if (isBeingWritten(database.get())) {
        return std::nullopt;
    }
    if (record.isThere()) {
        auto known = userOf(record.bytes());
        if (!known) {
            return std::nullopt; // the account has a record, but an unreadable one
        }
        return known;
    }
    if (record.error() != TDB_ERR_NOEXIST) {
        return std::nullopt; // in a damaged file an account that is not found may still exist
    }
    return std::optional<SambaUser>();
}

} // namespace platform
