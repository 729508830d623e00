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

constexpr std::uint32_t knownVersion = 4; ///< of tdbsam's records, Samba 3.4 and later
constexpr std::uint32_t disabledFlag = 1; ///< "D" in smbpasswd(5)
constexpr std::size_t hashLength = 16;

// A record of an account: numbers of four bytes, the lowest first, and texts, each behind its length.
constexpr int timesBeforeTexts = 7;
constexpr int texts = 12;
constexpr int numbersAfterTexts = 2;

/// Takes a record apart from its beginning. Once something does not fit, nothing more does.
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

/// The value behind a key, which ends in a NUL; none when there is no such key. Holds hashes: wiped at the
/// end.
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
            std::free(data_.dptr); // NOLINT(cppcoreguidelines-no-malloc): tdb gives it so
        }
    }

    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;

    [[nodiscard]] bool isThere() const { return data_.dptr != nullptr; }

    /// Why it is not there.
    [[nodiscard]] TDB_ERROR error() const { return error_; }

    [[nodiscard]] std::string_view bytes() const {
        return {reinterpret_cast<const char*>(data_.dptr), data_.dsize};
    }

  private:
    TDB_DATA data_{};
    TDB_ERROR error_ = TDB_SUCCESS;
};

/// True when a program is about to write. Who opens a database for reading alone takes no lock, and could
/// see half a change.
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
            return std::nullopt; // not an account without a record
        }
        return known;
    }
    if (record.error() != TDB_ERR_NOEXIST) {
        return std::nullopt; // in a damaged file, whoever cannot be found may be there
    }
    return std::optional<SambaUser>();
}

} // namespace platform
