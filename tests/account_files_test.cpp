#include "directory/ni_report.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/SystemServices.h"
#include "platform/netinfo/LocalDomain.h"
#include "platform/netinfo/Store.h"
#include "platform/netinfo/ni.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <cstdlib>

namespace fs = std::filesystem;
using platform::Store;

namespace {

class Computer : public platform::LocalDomain {
  public:
    explicit Computer(fs::path folder) : folder_(std::move(folder)) {}

    [[nodiscard]] std::string storeFile() const override { return (folder_ / "directory.db").string(); }

    [[nodiscard]] std::optional<platform::AccountFiles> accountFiles() const override {
        return platform::AccountFiles{(folder_ / "passwd").string(), (folder_ / "group").string()};
    }

  private:
    fs::path folder_;
};

class AccountFilesTest : public testing::Test {
  public:
    AccountFilesTest() {
        std::string pattern = (fs::temp_directory_path() / "brindle-accounts-XXXXXX").string();
        folder = ::mkdtemp(pattern.data());
        write("passwd", "root:x:0:0:root:/root:/bin/bash\n"
                        "nobody:x:65534:65534:nobody:/nonexistent:/usr/sbin/nologin\n"
                        "broken line\n"
                        "+nis:x:::::\n"
                        "alice:x:1000:1000:Alice A,Room 1,,:/home/alice:/bin/sh\n"
                        "alice:x:1001:1000:again:/:/bin/sh\n");
        write("group", "root:x:0:\nsudo:x:27:alice,bob\nadmin:x:115:carol,alice\nstaff:x:50:bob\n");
        platform::Services services;
        services.log = std::make_shared<platform::SystemLog>();
        services.localDomain = std::make_shared<Computer>(folder);
        host = std::make_unique<platform::Host>(std::move(services));
    }

    ~AccountFilesTest() override { fs::remove_all(folder); }

  protected:
    void write(const std::string& name, const std::string& bytes) const {
        std::ofstream(folder / name, std::ios::binary) << bytes;
    }

    static std::vector<std::string> report(const std::string& path,
                                           const std::vector<std::string>& properties) {
        std::vector<std::string> lines;
        EXPECT_EQ(ni_report_local(path, properties, lines), NI_OK);
        return lines;
    }

    static void set(Store& store, Store::Record record, const char* property, const std::string& value) {
        store.setValues(record, property, std::vector{value});
    }

    fs::path folder;
    std::unique_ptr<platform::Host> host;
};

} // namespace

TEST_F(AccountFilesTest, TheLinesAreTheUsersAndGroupsOfAnUnchangedComputer) {
    EXPECT_EQ(
        report("/users", {"name", "uid", "sharedDir", "realname", "gid"}),
        (std::vector<std::string>{"root\t0\t#NoValue#\troot\t0\t\n", "nobody\t-2\t#NoValue#\tnobody\t-2\t\n",
                                  "alice\t1000\t#NoValue#\tAlice A\t1000\t\n"}));
    EXPECT_EQ(report("/groups", {"gid", "name", "users"}),
              (std::vector<std::string>{"0\troot\t#NoValue#\t\n", "27\tsudo\talice,bob\t\n",
                                        "50\tstaff\tbob\t\n", "80\tadmin\talice,bob,carol\t\n"}));
    EXPECT_EQ(report("/config/Brindle", {"name"}), std::vector<std::string>{});
    EXPECT_FALSE(fs::exists(folder / "directory.db"));
}

TEST_F(AccountFilesTest, PropertiesOutsideALineBelongToTheAccountOfThatNameAndId) {
    Store store((folder / "directory.db").string(), Store::Opening::Create);
    const auto users = store.addRecord(Store::root, "users");
    store.addRecord(Store::root, "groups");
    const auto alice = store.addRecord(users, "alice");
    set(store, alice, "uid", "1000");
    set(store, alice, "realname", "Not Alice");
    set(store, alice, "sharedDir", "Public");
    const auto root = store.addRecord(users, "root");
    set(store, root, "uid", "5"); // the number of another account that had the name before
    set(store, root, "sharedDir", "Public");
    set(store, store.addRecord(users, "halfmade"), "realname", "H");
    EXPECT_TRUE(store.commit().isOk());
    EXPECT_EQ(report("/users", {"name", "realname", "sharedDir"}),
              (std::vector<std::string>{"root\troot\t#NoValue#\t\n", "nobody\tnobody\t#NoValue#\t\n",
                                        "alice\tAlice A\tPublic\t\n"}));
    platform::OwnedDomain domain;
    ni_id id;
    ni_namelist home;
    ASSERT_EQ(platform::openLocalRecord("/users/alice", &domain, &id), NI_OK);
    EXPECT_EQ(ni_lookupprop(domain.get(), &id, "home", &home), NI_OK);
    EXPECT_EQ(home.ninl_val, std::vector<std::string_view>{"/home/alice"});
    EXPECT_EQ(platform::openLocalRecord("/users/halfmade", &domain, &id), NI_NODIR);
}
