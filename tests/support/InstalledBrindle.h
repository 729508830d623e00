#pragma once

#include "platform/posix/ProcessTable.h"
#include "platform/posix/WholeFile.h"
#include "support/OwnComputer.h"
#include "support/Subprocess.h"

#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

/// Brindle installed on a computer of its own: an administrator who runs scripts, sudo, the installed helper,
/// and the computer's own smbd.
class InstalledBrindle : public OwnComputer {
  protected:
    void SetUp() override {
        OwnComputer::SetUp();
        for (const char* program : {"/usr/sbin/smbd", "/usr/bin/smbclient", "/usr/bin/sudo"}) {
            if (::access(program, X_OK) != 0) {
                GTEST_SKIP() << program << " is not installed";
            }
        }
        if (IsSkipped()) {
            return;
        }
        run({"cmake", "--install", BRINDLE_BUILD, "--prefix", prefix});
        if (::getpwnam("chief") == nullptr) {
            run({"/usr/sbin/useradd", "-m", "chief"});
        }
        allow("NOPASSWD: " + prefix + "/libexec/brindle-helper");
        std::filesystem::create_directories("/run/samba");
        std::filesystem::copy_file("/usr/share/samba/smb.conf", smbConf,
                                   std::filesystem::copy_options::overwrite_existing);
        run({"/usr/sbin/smbd", "-D"});
        std::filesystem::create_directories(folder_);
        std::filesystem::permissions(folder_, std::filesystem::perms(0755));
    }

    void TearDown() override {
        for (const pid_t process : platform::processIds()) {
            if (platform::programNameOf(process).starts_with("smbd")) {
                ::kill(process, SIGTERM);
            }
        }
    }

    static std::string run(const std::vector<std::string>& command) {
        const Finished finished = runProgram(command);
        EXPECT_EQ(finished.status, 0) << command.front() << ": " << finished.output << finished.errors;
        return finished.output;
    }

    /// Sets what sudo lets the administrator do.
    static void allow(const std::string& rule) {
        const std::string text = "Defaults logfile=" + sudoLog + "\nchief ALL=(root) " + rule + "\n";
        EXPECT_TRUE(platform::writeWholeFile("/etc/sudoers.d/chief", text, {.mode = 0440}).isOk());
    }

    /// Runs a script as the administrator and returns its output without the alert at the first start.
    static std::string script(const std::string& commands) {
        const Finished finished =
            runProgram({"/usr/sbin/runuser", "-u", "chief", "--", "env", "HOME=/home/chief", "LC_ALL=C",
                        prefix + "/bin/brindle", "--system", "--script", "-"},
                       "answer Donation Cancel\nstart\n" + commands);
        EXPECT_EQ(finished.status, 0) << finished.output << finished.errors;
        return finished.output;
    }

    [[nodiscard]] std::string makeDocs() const {
        return "choose " + folder_ +
               "\nsend selectDirectory:\ntype shareName Docs\nselect everyonePrivs 0\n"
               "select sharingAFS 1\nselect sharingSMB 1\ncheck guestAccessButton on\npress createNewShare\n";
    }

    /// Returns what smbclient prints for `commands` as `user` ("NAME%PASSWORD"), or as a guest if it is
    /// empty.
    static std::string smb(const std::string& share, const std::string& user, const std::string& commands) {
        std::vector<std::string> words = {"smbclient", "//127.0.0.1/" + share, "-c", commands};
        if (user.empty()) {
            words.emplace_back("-N");
        } else {
            // In a file, so that no list of processes shows it.
            const std::size_t end = user.find('%');
            const std::string text =
                "username=" + user.substr(0, end) + "\npassword=" + user.substr(end + 1) + "\n";
            EXPECT_TRUE(platform::writeWholeFile("/home/who", text, {.mode = 0600}).isOk());
            words.insert(words.end(), {"-A", "/home/who"});
        }
        const Finished finished = runProgram(words);
        return finished.output + finished.errors;
    }

    static std::string ownerOf(const std::string& file) {
        struct stat status {};

        const passwd* entry = ::stat(file.c_str(), &status) == 0 ? ::getpwuid(status.st_uid) : nullptr;
        return entry == nullptr ? "nobody at all" : entry->pw_name;
    }

    static bool contains(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }

    inline static const std::string prefix = "/var/lib/installed"; // only root may write above it
    inline static const std::string smbConf = "/etc/samba/smb.conf";
    inline static const std::string sudoLog = "/var/log/samba/sudo.log";

    std::string folder_ = "/home/shared";
};
