#include "platform/netinfo/ni.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/samba/ComputerPasswords.h"
#include "platform/samba/PasswordFile.h"
#include "support/RootFixture.h"

#include <array>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <thread>

#include <fcntl.h>
#include <sys/wait.h>
#include <tdb.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

std::string contents(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

} // namespace

TEST(ComputerPasswords, AreInTheDefaultPlaceUnlessASettingMaySayOtherwise) {
    for (const char* text : {"", "[global]\n; passdb backend = ldapsam\n#include = /etc/samba/more\n",
                             "[docs]\npath = /srv/private dir\ncomment = include = x\n"}) {
        EXPECT_TRUE(platform::usesDefaultPasswordDatabase(text)) << text;
    }
    for (const char* line :
         {"passdb backend = tdbsam", "\tPassDB\tBackEnd=smbpasswd:/x", "passdbbackend = x",
          "private dir = /x", "private directory = /x", "PRIVATE DIR\t= /x", "include = /etc/samba/more",
          "config file = /x", "config backend = registry\r"}) {
        EXPECT_FALSE(platform::usesDefaultPasswordDatabase("[global]\n  workgroup = X\n" + std::string(line)))
            << line;
    }
}

TEST_F(Root, PasswordsGoToTheRootsOwnServerAndAreRemovedWithTheUser) {
    ASSERT_TRUE(root.makeIfMissing().isOk());
    EXPECT_TRUE(contains(dscl("/Users/alice", "secret"), "there is no such user"));
    EXPECT_TRUE(contains(dscl("/Groups/alice", "secret"), "/Users/NAME"));
    nicl({"-create", "/users/alice"});
    nicl({"-create", "/users/alice", "uid", "70501"});
    nicl({"-create", "/users/alice", "gid", "70501"});
    EXPECT_TRUE(contains(dscl("/Users/alice", "two\nlines"), "control character"));
    if (platform::SambaAccounts::wrapperLibrary().empty() || access("/usr/bin/pdbedit", X_OK) != 0) {
        EXPECT_TRUE(contains(dscl("/Users/alice", "secret"), "install the package"));
        GTEST_SKIP() << "Samba or libnss-wrapper is not installed";
    }
    EXPECT_TRUE(contains(dscl("/Users/alice", std::string(300, 'x')), "longer than"));
    EXPECT_EQ(dscl("/Users/alice", "secret"), "");
    EXPECT_TRUE(contains(passwordDatabase(), "alice:70501:"));
    EXPECT_EQ(nicl({"-create", "/users/alice", "name", "eve"}), "");
    EXPECT_FALSE(contains(passwordDatabase(), "70501"));
    EXPECT_EQ(dscl("/Users/eve", "secret"), "");
    EXPECT_EQ(nicl({"-create", "/users/eve", "name", "Eve"}), "");
    EXPECT_EQ(dscl("/Users/Eve", "secret"), "");
    EXPECT_TRUE(contains(passwordDatabase(), "Eve:70501:"));
    EXPECT_EQ(nicl({"-delete", "/users/Eve"}), "");
    EXPECT_EQ(passwordDatabase(), "");
    fs::remove_all(root.sambaPaths().folder);
    nicl({"-create", "/users/alice"});
    EXPECT_TRUE(contains(dscl("/Users/alice", "secret"), "has no password database"));
}

/// A root with the user alice, who has a password.
class RootWithPassword : public Root {
  protected:
    void SetUp() override {
        if (platform::SambaAccounts::wrapperLibrary().empty() || access("/usr/bin/pdbedit", X_OK) != 0) {
            GTEST_SKIP() << "Samba or libnss-wrapper is not installed";
        }
        ASSERT_TRUE(root.makeIfMissing().isOk());
        nicl({"-create", "/users/alice"});
        nicl({"-create", "/users/alice", "uid", "70501"});
        nicl({"-create", "/users/alice", "gid", "70501"});
        ASSERT_EQ(dscl("/Users/alice", "secret"), "");
        ASSERT_TRUE(hasPassword());
    }

    [[nodiscard]] bool hasPassword() const { return contains(passwordDatabase(), "alice:"); }

    [[nodiscard]] bool isListed() const {
        return contains(contents(server.passwdFile()), "\nalice:x:70501:");
    }

    [[nodiscard]] std::string deleteAlice(int waitSeconds) const {
        tools::DirectoryPlace place = tools::DirectoryPlace::ofRoot(root.folder());
        place.waitSeconds = waitSeconds;
        return tools::runNicl(place, std::vector<std::string>{".", "-delete", "/users/alice"}).output;
    }

    platform::SambaAccounts server{root.sambaPaths()};
};

TEST_F(RootWithPassword, KeepsItWhenTheUserCannotBeDeleted) {
    ni_domain* reader = nullptr;
    ni_id id;
    ASSERT_EQ(ni_openfile(root.storeFile(), &reader), NI_OK);
    ASSERT_EQ(ni_root(reader, &id), NI_OK);
    EXPECT_TRUE(contains(deleteAlice(0), "another program is using it"));
    ni_free(reader);
    EXPECT_TRUE(hasPassword());

    fs::remove(server.groupFile());
    fs::create_directory(server.groupFile());
    EXPECT_TRUE(contains(deleteAlice(1), "cannot write " + server.groupFile()));
    EXPECT_TRUE(hasPassword());
    EXPECT_TRUE(isListed());
    fs::remove(server.groupFile());

    const fs::path database = root.sambaPaths().folder + "/private/passdb.tdb";
    fs::rename(database, database.string() + ".away");
    fs::create_directory(database);
    EXPECT_TRUE(contains(deleteAlice(1), "cannot read the password database"));
    fs::remove(database);
    fs::rename(database.string() + ".away", database);
    EXPECT_TRUE(hasPassword());
    EXPECT_TRUE(isListed()) << "a user who is still in the directory is still one of the server's";

    EXPECT_EQ(deleteAlice(1), "");
    EXPECT_FALSE(hasPassword());
    EXPECT_FALSE(isListed());
}

TEST_F(RootWithPassword, WaitsForASlowDatabaseWithoutHoldingTheDirectory) {
    // Locked as another Samba program would lock it.
    const platform::FileDescriptor database(
        ::open((root.sambaPaths().folder + "/private/passdb.tdb").c_str(), O_RDWR | O_CLOEXEC));

    struct flock all {};

    all.l_type = F_WRLCK;
    ASSERT_EQ(::fcntl(database.get(), F_SETLK, &all), 0);
    const platform::SambaAccounts hasty(root.sambaPaths(), std::chrono::milliseconds(300));
    EXPECT_TRUE(contains(hasty.setPassword("alice", "other").text(), "did not answer"));
    EXPECT_TRUE(contains(hasty.removeUser("alice").text(), "did not answer"));

    std::string said;
    std::atomic<bool> isSet = false;
    std::thread setting([&] {
        said = dscl("/Users/alice", "other");
        isSet = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    tools::DirectoryPlace place = tools::DirectoryPlace::ofRoot(root.folder());
    place.waitSeconds = 1;
    EXPECT_EQ(
        tools::runNicl(place, std::vector<std::string>{".", "-create", "/users/alice", "hint", "x"}).output,
        "");
    EXPECT_FALSE(isSet) << "the database was not locked";
    all.l_type = F_UNLCK;
    ::fcntl(database.get(), F_SETLK, &all);
    setting.join();
    EXPECT_EQ(said, "");
}

TEST_F(RootWithPassword, KeepsItUntilNobodyWithThatNameIsLeftWhateverTheCase) {
    {
        platform::Store store(root.storeFile()); // as in directories from before nicl refused such names
        store.addRecord(store.child(platform::Store::root, "users").value(), "ALICE");
        ASSERT_TRUE(store.commit().isOk());
    }
    EXPECT_EQ(nicl({"-delete", "/users/ALICE"}), "");
    EXPECT_TRUE(hasPassword());
    EXPECT_EQ(deleteAlice(1), "");
    EXPECT_FALSE(hasPassword());
}

TEST_F(RootWithPassword, IsReadFromTheDatabaseAsSambaReportsIt) {
    const std::string database = root.sambaPaths().folder + "/private/passdb.tdb";
    const auto known = [&](const std::string& user) { return platform::userInPasswordFile(database, user); };
    ASSERT_TRUE(known("Alice") && *known("Alice")) << "names are compared without case";
    EXPECT_EQ((*known("alice"))->name, "alice");
    EXPECT_TRUE((*known("alice"))->hasPassword);
    EXPECT_FALSE((*known("alice"))->isDisabled);
    EXPECT_TRUE(known("bob") && !*known("bob"));
    EXPECT_TRUE(contains(pdbedit({"-c", "[D]", "--user=alice"}), "D"));
    EXPECT_TRUE((*known("alice"))->isDisabled);
    EXPECT_TRUE((*known("alice"))->hasPassword);
    EXPECT_FALSE(platform::userInPasswordFile(database + ".none", "alice")) << "its users are not known";
    std::ofstream(database, std::ios::binary) << "not a database";
    EXPECT_FALSE(known("alice"));
}

/// Does `work` on the database in another process, then `check` here while that process waits.
void whileAnotherProcess(const std::string& database, const std::function<void(tdb_context*)>& work,
                         const std::function<void()>& check) {
    std::array<int, 2> ready{};
    std::array<int, 2> done{};
    ASSERT_EQ(pipe(ready.data()) + pipe(done.data()), 0);
    const pid_t child = fork();
    char byte = 0;
    if (child == 0) {
        close(done[1]);
        tdb_context* open = tdb_open(database.c_str(), 0, TDB_DEFAULT, O_RDWR, 0);
        work(open);
        (void)write(ready[1], &byte, 1);
        (void)read(done[0], &byte, 1); // waits until the other end is closed
        _exit(0);
    }
    EXPECT_EQ(read(ready[0], &byte, 1), 1);
    check();
    for (const int descriptor : {ready[0], ready[1], done[0], done[1]}) {
        close(descriptor);
    }
    waitpid(child, nullptr, 0);
}

TEST_F(RootWithPassword, IsLeftToSambaWhileTheDatabaseIsWrittenOrNewer) {
    const std::string database = root.sambaPaths().folder + "/private/passdb.tdb";
    const auto isKnown = [&] { return platform::userInPasswordFile(database, "alice").has_value(); };
    const auto makeVersion = [](unsigned char version) {
        return [version](tdb_context* open) {
            std::string key("INFO/version\0", 13);
            std::array<unsigned char, 4> bytes{version};
            tdb_store(open, {reinterpret_cast<unsigned char*>(key.data()), key.size()},
                      {bytes.data(), bytes.size()}, TDB_REPLACE);
        };
    };
    const auto storeHalf = [&](tdb_context* open) {
        tdb_transaction_start(open);
        makeVersion(5)(open);
        tdb_transaction_prepare_commit(open);
    };
    whileAnotherProcess(database, storeHalf, [&] { EXPECT_FALSE(isKnown()); });
    EXPECT_TRUE(platform::moveInPasswordFile(database, "alice", "bob", {}).isOk());
    EXPECT_TRUE(platform::userInPasswordFile(database, "bob").value_or(std::nullopt)) << "it was killed";
    EXPECT_TRUE(isKnown());
    whileAnotherProcess(database, makeVersion(5), [&] { EXPECT_FALSE(isKnown()); });
    whileAnotherProcess(database, makeVersion(4), [&] { EXPECT_TRUE(isKnown()); });
}
