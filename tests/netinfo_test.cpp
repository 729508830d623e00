#include "platform/netinfo/ni.h"
#include "support/DirectoryFixture.h"

#include <sqlite3.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;
using platform::Store;

namespace {

using Domain = platform::OwnedDomain;

Domain openLocal() {
    ni_domain* domain = nullptr;
    EXPECT_EQ(ni_open(nullptr, ".", &domain), NI_OK);
    return Domain(domain);
}

std::vector<std::string> texts(const ni_namelist& list) {
    return {list.ninl_val.begin(), list.ninl_val.end()};
}

ni_status search(ni_domain* domain, const char* path, ni_id* id) {
    const ni_status status = ni_root(domain, id);
    return status == NI_OK ? ni_pathsearch(domain, id, path) : status;
}

std::string bytes(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// Makes a directory in Brindle's first layout, with a row for each property and each value.
void makeStoreOfRows(const fs::path& file) {
    fs::remove(file);
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
    const char* sql = R"(
PRAGMA application_id = 0x42724469; PRAGMA user_version = 1;
CREATE TABLE record (id INTEGER PRIMARY KEY AUTOINCREMENT, parent INTEGER REFERENCES record (id),
    name TEXT NOT NULL, UNIQUE (parent, name));
CREATE INDEX record_by_parent ON record (parent);
CREATE TABLE property (record INTEGER NOT NULL, position INTEGER NOT NULL, name TEXT NOT NULL,
    PRIMARY KEY (record, position)) WITHOUT ROWID;
CREATE TABLE value (record INTEGER NOT NULL, property INTEGER NOT NULL, position INTEGER NOT NULL,
    value TEXT NOT NULL, PRIMARY KEY (record, property, position)) WITHOUT ROWID;
INSERT INTO record VALUES (0, NULL, ''), (1, 0, 'users'), (2, 1, 'ada'), (3, 1, 'zoe'), (7, 1, 'bare');
INSERT INTO property VALUES (1, 0, 'name'), (2, 0, 'name'), (2, 2, 'mail'), (2, 4, 'hint'), (2, 5, 'uid'),
    (3, 0, 'name'), (3, 1, 'uid');
INSERT INTO value VALUES (1, 0, 0, 'users'), (2, 0, 0, 'ada'), (2, 2, 3, 'b'), (2, 2, 4, ''), (2, 2, 5, 'a'),
    (2, 5, 0, '501'), (3, 0, 0, 'zoe'), (3, 1, 0, '502');
)";
    char* error = nullptr;
    EXPECT_EQ(sqlite3_exec(database, sql, nullptr, nullptr, &error), SQLITE_OK) << error;
    sqlite3_close(database);
}

void execute(const fs::path& file, const std::string& sql) {
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(database);
}

/// Adds so many records that SQLite writes some of them to the file before the commit.
void addTooManyForMemory(Store& store) {
    const Store::Record users = store.child(Store::root, "users").value();
    for (int index = 0; index < 12000; ++index) {
        const auto record = store.addRecord(users, "user" + std::to_string(index));
        const std::string longValue(200, 'x');
        store.setValues(record, "realname", std::span(&longValue, 1));
    }
}

/// Kills a writer when half of its changes are in the file.
void killWriter(const fs::path& file) {
    const pid_t child = fork();
    if (child == 0) {
        Store store(file);
        addTooManyForMemory(store);
        raise(SIGKILL);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
}

std::size_t countUsers() {
    const Domain domain = openLocal();
    ni_id id;
    ni_idlist children;
    EXPECT_EQ(search(domain.get(), "/users", &id), NI_OK);
    EXPECT_EQ(ni_children(domain.get(), &id, &children), NI_OK);
    return children.niil_val.size();
}

} // namespace

class Directory : public DirectoryFixture {};

TEST_F(Directory, ListsRecordsPropertiesAndValuesInTheOrderInWhichTheyWereMade) {
    nicl({"-create", "/users/zoe"});
    nicl({"-create", "/users/adam"});
    nicl({"-create", "/users/zoe", "uid", "501"});
    nicl({"-create", "/users/zoe", "mail", "b", "a", ""});
    nicl({"-create", "/users/zoe", "hint"});
    nicl({"-create", "/users/zoe", "uid", "502"});

    const Domain domain = openLocal();
    ni_id id;
    ni_idlist children;
    ASSERT_EQ(search(domain.get(), "/users", &id), NI_OK);
    ASSERT_EQ(ni_children(domain.get(), &id, &children), NI_OK);
    ASSERT_EQ(children.niil_val.size(), 2U);
    ni_id zoe{children.niil_val[0]};
    ni_namelist names;
    ASSERT_EQ(ni_listprops(domain.get(), &zoe, &names), NI_OK);
    EXPECT_EQ(texts(names), (std::vector<std::string>{"name", "uid", "mail", "hint"}));
    ni_namelist mail;
    ASSERT_EQ(ni_lookupprop(domain.get(), &zoe, "mail", &mail), NI_OK);
    EXPECT_EQ(texts(mail), (std::vector<std::string>{"b", "a", ""}));
    ni_namelist hint;
    EXPECT_EQ(ni_lookupprop(domain.get(), &zoe, "hint", &hint), NI_OK);
    EXPECT_TRUE(hint.ninl_val.empty());
    ni_idlist found;
    EXPECT_EQ(ni_lookup(domain.get(), &id, "mail", "a", &found), NI_OK);
    EXPECT_EQ(found.niil_val, (std::vector<std::uint32_t>{zoe.nii_object}));
}

TEST_F(Directory, InTheFirstLayoutIsReadAndConvertedByTheFirstWriter) {
    makeStoreOfRows(host.storeFile());
    const std::string before = bytes(host.storeFile());
    const std::string ada = "name: ada\nmail: b  a\nhint:\nuid: 501\n";
    const std::string zoe = "name: zoe\nuid: 502\n";
    EXPECT_EQ(record("/users/ada"), ada);
    EXPECT_EQ(record("/users/zoe"), zoe);
    EXPECT_EQ(record("/users/bare"), "");
    EXPECT_EQ(countUsers(), 3U);
    EXPECT_TRUE(bytes(host.storeFile()) == before) << "reading wrote";

    {
        Store store(host.storeFile());
        store.undo(); // undoes the new layout, too
        EXPECT_EQ(store.children(store.child(Store::root, "users").value()).records().size(), 3U);
    }
    EXPECT_EQ(nicl({"-create", "/users/eve"}), "");
    EXPECT_EQ(record("/users/ada"), ada);
    EXPECT_EQ(record("/users/zoe"), zoe);
    EXPECT_EQ(record("/users/eve"), "name: eve\n");
    EXPECT_EQ(countUsers(), 4U);
}

TEST_F(Directory, KeepsTextsOfAnyLengthAndAnyBytes) {
    const std::vector<std::string> values{std::string(127, 'a'), std::string(128, 'b'),
                                          std::string(70000, 'c'), std::string("\0\xff\x80", 3), ""};
    {
        Store store(host.storeFile());
        const auto users = store.child(Store::root, "users").value();
        const auto ada = store.addRecord(users, "ada");
        store.setValues(ada, "many", std::vector<std::string>(300, "x"));
        store.setValues(ada, "odd", values);
        EXPECT_EQ(store.values(ada, "odd"), values);
        EXPECT_TRUE(store.commit().isOk());
    }
    const Domain domain = openLocal();
    ni_id id;
    ASSERT_EQ(search(domain.get(), "/users/ada", &id), NI_OK);
    ni_namelist odd;
    ni_namelist many;
    EXPECT_EQ(ni_lookupprop(domain.get(), &id, "many", &many), NI_OK);
    EXPECT_EQ(ni_lookupprop(domain.get(), &id, "odd", &odd), NI_OK);
    EXPECT_EQ(many.ninl_val.size(), 300U);
    EXPECT_EQ(texts(odd), values);
}

TEST_F(Directory, ReportsADamagedRecordAndStillReadsTheOthers) {
    // Each announces more than it contains: a name without an end, more values than bytes, a value that is
    // cut short. The last one has a longer number than is ever written.
    for (const char* content : {"x'056e616d'", "x'046e616d65ffffffff0f'", "x'046e616d650105616461'",
                                "x'ffffffffffff'", "x'84006e616d650103616461'"}) {
        host.write("damaged.db", "");
        fs::copy_file(host.storeFile(), host.root() / "damaged.db", fs::copy_options::overwrite_existing);
        const std::string sql = std::string("INSERT INTO record (parent, name, content) SELECT id, 'ada', ") +
                                content + " FROM record WHERE name = 'users'";
        execute(host.root() / "damaged.db", sql);

        ni_domain* opened = nullptr;
        ASSERT_EQ(ni_openfile(host.root() / "damaged.db", &opened), NI_OK);
        Domain domain(opened);
        ni_id id;
        ni_namelist names;
        ASSERT_EQ(search(opened, "/users/ada", &id), NI_OK);
        EXPECT_EQ(ni_listprops(opened, &id, &names), NI_SYSTEMERR) << content;
        ASSERT_EQ(search(opened, "/groups", &id), NI_OK);
        EXPECT_EQ(ni_listprops(opened, &id, &names), NI_OK) << content;

        domain.reset(); // a writer would wait for this reader
        for (const bool writes : {false, true}) {
            Store store(host.root() / "damaged.db");
            const auto users = store.child(Store::root, "users").value();
            if (writes) {
                store.setValues(store.child(users, "ada").value(), "uid", {});
            } else {
                EXPECT_TRUE(store.children(users).records().empty());
            }
            EXPECT_FALSE(store.commit().isOk()) << content << writes;
        }
    }
}

TEST_F(Directory, FromANewerBrindleIsNamedAndLeftAlone) {
    execute(host.storeFile(), "PRAGMA user_version = 9");
    const std::string before = bytes(host.storeFile());
    EXPECT_NE(nicl({"-create", "/users/ada"}).find("newer Brindle"), std::string::npos);
    EXPECT_FALSE(Store::checkVersion(host.storeFile()).isOk());
    EXPECT_TRUE(bytes(host.storeFile()) == before);
}

TEST_F(Directory, WithACycleOfParentsLosesNothingByADeletion) {
    nicl({"-create", "/users/ada"});
    execute(host.storeFile(),
            "UPDATE record SET parent = (SELECT id FROM record WHERE name = 'ada') WHERE id = 0");
    EXPECT_NE(nicl({"-delete", "/users/ada"}).find("damaged"), std::string::npos);
    EXPECT_EQ(record("/users/ada"), "name: ada\n");
}

TEST_F(Directory, LosesARecordWithAllThatStandsBelowIt) {
    const auto recordCount = [this] {
        sqlite3* database = nullptr;
        sqlite3_stmt* statement = nullptr;
        EXPECT_EQ(sqlite3_open(host.storeFile().c_str(), &database), SQLITE_OK);
        EXPECT_EQ(sqlite3_prepare_v2(database, "SELECT count(*) FROM record", -1, &statement, nullptr),
                  SQLITE_OK);
        EXPECT_EQ(sqlite3_step(statement), SQLITE_ROW);
        const int count = sqlite3_column_int(statement, 0);
        sqlite3_finalize(statement);
        sqlite3_close(database);
        return count;
    };
    nicl({"-create", "/users/zoe"});
    const int before = recordCount();
    {
        Store store(host.storeFile());
        const Store::Record ada = store.addRecord(store.child(Store::root, "users").value(), "ada");
        store.addRecord(store.addRecord(ada, "info"), "deep");
        EXPECT_TRUE(store.commit().isOk());
    }
    EXPECT_EQ(recordCount(), before + 3);
    nicl({"-delete", "/users/ada"});
    EXPECT_EQ(recordCount(), before);
    EXPECT_EQ(record("/users/zoe"), "name: zoe\n");
}

TEST_F(Directory, SaysWhichKindOfThingIsMissing) {
    const Domain domain = openLocal();
    ni_id id;
    EXPECT_EQ(search(domain.get(), "/users/nobody", &id), NI_NODIR);
    EXPECT_EQ(id.nii_object, 0U);
    ni_id missing{4711};
    ni_idlist children;
    ni_namelist names;
    EXPECT_EQ(ni_children(domain.get(), &missing, &children), NI_BADID);
    EXPECT_EQ(ni_listprops(domain.get(), &missing, &names), NI_BADID);
    EXPECT_EQ(ni_lookupprop(domain.get(), &id, "mail", &names), NI_NOPROP);

    host.write("text.db", "This is a letter and no directory, however long it may be.");
    for (const char* file : {"text.db", "missing.db"}) {
        ni_domain* other = nullptr;
        ni_status status = ni_openfile(host.root() / file, &other);
        const Domain closes(other);
        status = status == NI_OK ? ni_root(other, &id) : status;
        EXPECT_EQ(status, NI_CANTOPEN) << file;
    }
    EXPECT_FALSE(fs::exists(host.root() / "missing.db"));
}

TEST_F(Directory, IsReadableWithoutWriteAccessAndHasTheStateBeforeAKilledWriter) {
    nicl({"-create", "/users/ada"});
    killWriter(host.storeFile());
    const fs::path journal = host.storeFile().string() + "-journal";
    ASSERT_TRUE(fs::exists(journal)) << "the writer was killed before it wrote anything";
    const std::string before = bytes(host.storeFile());
    EXPECT_EQ(countUsers(), 1U);

    // As a user who may only read, in another process because the tests may run as root.
    fs::permissions(host.root(), fs::perms(0555));
    for (const auto& file : {host.storeFile(), journal}) {
        fs::permissions(file, fs::perms(0444));
    }
    const pid_t child = fork();
    if (child == 0) {
        const bool isPlain = geteuid() != 0 || setuid(65534) == 0;
        _exit(isPlain && countUsers() == 1 ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(bytes(host.storeFile()), before) << "reading wrote to the store";
    EXPECT_TRUE(fs::exists(journal)) << "reading removed the journal";

    fs::permissions(host.root(), fs::perms(0755));
    for (const auto& file : {host.storeFile(), journal}) {
        fs::permissions(file, fs::perms(0644));
    }
    EXPECT_EQ(nicl({"-create", "/users/grace"}), "");
    EXPECT_EQ(countUsers(), 2U);
}

TEST_F(Directory, FailsInsteadOfWaitingForeverWhileAWriterHoldsTheStore) {
    Store store(host.storeFile());
    addTooManyForMemory(store);
    const Domain domain = openLocal();
    ni_setabort(domain.get(), 1);
    ni_setreadtimeout(domain.get(), 0);
    ni_id id;
    EXPECT_EQ(ni_root(domain.get(), &id), NI_NORESPONSE);
    EXPECT_TRUE(store.commit().isOk());
    EXPECT_EQ(ni_root(domain.get(), &id), NI_OK);
}
