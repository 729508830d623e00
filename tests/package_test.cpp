// What desktops and Debian systems use: the menu entry, its description, and the package.

#include "support/Subprocess.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;

/// A new folder with the package in it.
class Package : public testing::Test {
  protected:
    void SetUp() override {
        for (const char* tool : {"desktop-file-validate", "appstreamcli", "lintian", "dpkg-shlibdeps"}) {
            if (::access((std::string("/usr/bin/") + tool).c_str(), X_OK) != 0) {
                GTEST_SKIP() << tool << " is not installed";
            }
        }
        std::string pattern = (fs::temp_directory_path() / "brindle-package-XXXXXX").string();
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        folder_ = pattern;
    }

    void TearDown() override {
        if (!folder_.empty()) {
            fs::remove_all(folder_);
        }
    }

    static std::string run(const std::vector<std::string>& command,
                           const std::vector<std::string>& environment = {}) {
        const Finished finished = runProgram(command, {}, environment);
        EXPECT_EQ(finished.status, 0) << command.front() << ": " << finished.output << finished.errors;
        return finished.output;
    }

    /// Makes the package and returns its path.
    [[nodiscard]] std::string make() const {
        run({"cpack", "--config", BRINDLE_BUILD "/CPackConfig.cmake", "-B", folder_.string()});
        for (const auto& entry : fs::directory_iterator(folder_)) {
            if (entry.path().extension() == ".deb") {
                return entry.path().string();
            }
        }
        ADD_FAILURE() << "cpack made no package";
        return {};
    }

    fs::path folder_;
};

TEST_F(Package, HasAMenuEntryAndADescriptionThatDesktopsAccept) {
    run({"cmake", "--install", BRINDLE_BUILD, "--prefix", folder_.string()});
    const std::string share = folder_.string() + "/share/";
    EXPECT_EQ(run({"desktop-file-validate", share + "applications/brindle.desktop"}), "");
    run({"appstreamcli", "validate", "--no-net", share + "metainfo/example.brindle.Brindle.metainfo.xml"});
}

TEST_F(Package, HasNoFaultAndRunsWhereDpkgInstalledIt) {
    const std::string package = make();
    run({"lintian", "--fail-on", "error", package});
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can install something with dpkg";
    }
    // The package's dependencies are checked against what this computer has installed.
    const fs::path computer = folder_ / "computer";
    const fs::path state = computer / "var/lib/dpkg";
    fs::create_directories(state / "info");
    fs::create_directories(state / "updates");
    fs::copy_file("/var/lib/dpkg/status", state / "status");
    run({"dpkg", "--root=" + computer.string(), "--install", package});

    const std::string program = (computer / "usr/bin/brindle").string();
    const std::vector<std::string> environment = {
        "HOME=" + folder_.string(), "LC_ALL=C",           "DISPLAY=",
        "WAYLAND_DISPLAY=",         "BRINDLE_RESOURCES=", "BRINDLE_ROOT=" + (folder_ / "root").string()};
    run({program, "groups", "add", "friends", "--yes"}, environment); // through the installed helper
    EXPECT_NE(run({program, "--print", "groups"}, environment).find("friends"), std::string::npos);
    // The page that Help opens.
    const std::string page = (computer / "usr/share/brindle/help/index.html").string();
    EXPECT_NE(run({"cat", page}).find("<h1>Brindle: the guide</h1>"), std::string::npos);
    run({"grep", "-q", "<string>help/index.html</string>",
         (computer / "usr/share/brindle/Info.plist").string()});
    run({program, "--snapshot", (folder_ / "pictures").string()}, environment);
    EXPECT_TRUE(fs::exists(folder_ / "pictures/shares.png"));
}

} // namespace
