#include "directory/ni_report.h"
#include "support/DirectoryFixture.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

using Texts = std::vector<std::string>;

Texts report(const std::string& path, const Texts& properties) {
    Texts lines;
    ni_report_local(path, properties, lines);
    return lines;
}

} // namespace

class Report : public DirectoryFixture {};

TEST_F(Report, HasALinePerRecordInTheDirectorysOrderAndAFieldPerProperty) {
    nicl({"-create", "/groups/staff"});
    nicl({"-create", "/groups/staff", "gid", "20"});
    nicl({"-create", "/groups/staff", "users", "bob", "alice"});
    nicl({"-create", "/groups/empty"});
    nicl({"-create", "/groups/empty", "users"});
    nicl({"-create", "/groups/empty", "gid", ""});
    nicl({"-create", "/groups/bytes"});
    nicl({"-create", "/groups/bytes", "gid", "\xff\xfe"});
    EXPECT_EQ(
        report("/groups", {"gid", "name", "users"}),
        (Texts{"20\tstaff\tbob,alice\t\n", "\tempty\t#NoValue#\t\n", "\xff\xfe\tbytes\t#NoValue#\t\n"}));
    EXPECT_EQ(report("/groups", {"Name", "name", "name"}).front(), "#NoValue#\tstaff\tstaff\t\n");
    EXPECT_EQ(report("/groups", {}), (Texts{"\n", "\n", "\n"}));
    EXPECT_TRUE(host.log.empty());
}

TEST_F(Report, HasEveryRecordHoweverThoseOfOtherDirectoriesLieBetween) {
    // More than are read at once: users side by side, with a group among every ten, so that both directories
    // are read in their own way.
    constexpr int users = 700;
    Texts userNames;
    Texts groupNames;
    platform::Store store(host.storeFile());
    const auto add = [&](const char* directory, const std::string& name, Texts& lines) {
        store.addRecord(store.child(platform::Store::root, directory).value_or(-1), name);
        lines.push_back(name + "\t\n");
    };
    for (int number = 0; number < users; ++number) {
        add("users", "u" + std::to_string(number), userNames);
        if (number % 10 == 0) {
            add("groups", "g" + std::to_string(number), groupNames);
        }
    }
    ASSERT_TRUE(store.commit().isOk());
    EXPECT_EQ(report("/users", {"name"}), userNames);
    EXPECT_EQ(report("/groups", {"name"}), groupNames);
}

TEST(ReportLine, CountsThePiecesThatTabsInValuesAdd) {
    const ReportPieces pieces("ada\t\t\n");
    EXPECT_EQ(pieces.size(), 3U);
    EXPECT_EQ(pieces.at(0), "ada");
    EXPECT_EQ(pieces.at(2), "\n");
    EXPECT_THROW(static_cast<void>(pieces.at(3)), std::out_of_range);
    const std::string tabs(20, '\t');
    const ReportPieces many(tabs);
    EXPECT_EQ(many.size(), 21U);
    EXPECT_THROW(static_cast<void>(many.at(15)), std::out_of_range);
}

TEST_F(Report, IsEmptyAndLoggedWhenTheDirectoryOrThePathIsMissing) {
    Texts lines;
    EXPECT_NE(ni_report_local("/nowhere", Texts{"name"}, lines), 0);
    std::filesystem::remove(host.storeFile());
    EXPECT_NE(ni_report_local("/users", Texts{"name"}, lines), 0);
    EXPECT_TRUE(lines.empty());
    EXPECT_EQ(host.log, (Texts{"Error opening /nowhere", "Can't connect to local NetInfo server\n"}));
}

TEST_F(Report, IsKeptUntilTheDirectoryChanges) {
    const Texts name = {"name"};
    KeptReport kept;
    const auto lines = [&] {
        EXPECT_EQ(ni_report_local("/users", name, kept), 0);
        return kept.lines;
    };
    nicl({"-create", "/users/ada"});
    const auto first = lines();
    EXPECT_EQ(lines(), first);
    nicl({"-create", "/users/ben"});
    EXPECT_EQ(*lines(), (Texts{"ada\t\n", "ben\t\n"}));
    EXPECT_EQ(*first, Texts{"ada\t\n"}) << "who holds it still has it";
    // Another store in the same place, with as many changes.
    const std::filesystem::path copy = host.storeFile().string() + ".copy";
    std::filesystem::copy_file(host.storeFile(), copy);
    nicl({"-delete", "/users/ben"});
    static_cast<void>(lines());
    std::filesystem::rename(copy, host.storeFile());
    nicl({"-delete", "/users/ada"});
    EXPECT_EQ(*lines(), Texts{"ben\t\n"});
    EXPECT_TRUE(kept.stamp.has_value());
    {
        std::fstream file(host.storeFile(), std::ios::in | std::ios::out | std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        const std::size_t place = bytes.rfind("\x04name\x01\x03"
                                              "ben");
        ASSERT_NE(place, std::string::npos);
        file.clear();
        file.seekp(static_cast<std::streamoff>(place) + 5).put('\x7f'); // so many values
    }
    EXPECT_EQ(*lines(), Texts{"#NoValue#\t\n"});
    EXPECT_FALSE(kept.stamp.has_value()) << "it is worth another try";
    std::filesystem::remove(host.storeFile());
    EXPECT_NE(ni_report_local("/users", name, kept), 0);
    EXPECT_EQ(kept.lines, nullptr);
}

TEST_F(Report, SkipsWhatCannotBeReadAndLogsIt) {
    ni_domain* domain = nullptr;
    ASSERT_EQ(ni_open(nullptr, ".", &domain), 0);
    Texts lines;
    EXPECT_EQ(ni_report(domain, {4711}, Texts{"name"}, lines), 0);
    EXPECT_TRUE(lines.empty());
    EXPECT_EQ(ni_report_dir(domain, {4711}, Texts{"name", "uid"}, lines), 0);
    EXPECT_EQ(lines, (Texts{"#NoValue#\t#NoValue#\t\n"}));
    EXPECT_EQ(host.log, (Texts{"ni_children: No such record\n", "ni_listprops: No such record\n"}));
    ni_free(domain);
}
