// Samba's password database. An input is the file itself or, after a "u", the record of an account in an
// intact file. It is refused, or the account that was asked for is read, and in an intact file renamed.

#include "Fuzz.h"
#include "platform/samba/PasswordFile.h"

#include <fcntl.h>
#include <tdb.h>

namespace {

TDB_DATA dataOf(std::string& bytes) {
    return {reinterpret_cast<unsigned char*>(bytes.data()), bytes.size()};
}

void store(tdb_context* database, std::string key, std::string value) {
    key += '\0';
    fuzz::require(tdb_store(database, dataOf(key), dataOf(value), TDB_REPLACE) == 0,
                  "a record can be stored");
}

void writeDatabase(const std::string& file, std::string_view record) {
    tdb_context* const database = tdb_open(file.c_str(), 0, TDB_DEFAULT, O_RDWR | O_CREAT | O_TRUNC, 0600);
    fuzz::require(database != nullptr, "a database can be made");
    using namespace std::string_literals;
    store(database, "INFO/version", "\4\0\0\0"s);
    store(database, "USER_alice", std::string(record));
    tdb_close(database);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::ScratchFolder folder;
    const std::string file = folder.file("passdb.tdb");
    const std::string_view bytes = fuzz::textOf(data, size);
    std::filesystem::remove(file);
    const bool isRecord = bytes.starts_with('u');
    if (isRecord) {
        writeDatabase(file, bytes.substr(1));
        const auto nobody = platform::userInPasswordFile(file, "bob");
        fuzz::require(nobody && !*nobody, "who has no record is nobody");
    } else {
        fuzz::writeFile(file, bytes);
    }
    const auto found = platform::userInPasswordFile(file, "Alice");
    fuzz::require(!isRecord || !found || *found, "who has a record is somebody");
    if (found && *found) {
        const std::string& name = (*found)->name;
        fuzz::require(!name.empty() && name.find('\0') == std::string::npos, "an account has a name", name);
        if (isRecord) {
            const bool isMoved = platform::moveInPasswordFile(file, "alice", "bob", {}).isOk();
            const auto moved = platform::userInPasswordFile(file, "bob");
            fuzz::require(isMoved && moved && *moved && (*moved)->name == "bob" &&
                              (*moved)->hasPassword == (*found)->hasPassword,
                          "it gets another name, and keeps its password");
        }
    }
    return 0;
}
