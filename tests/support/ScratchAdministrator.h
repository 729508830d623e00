#pragma once

#include "support/Subprocess.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include <cctype>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

/// An account of this computer that may use sudo with its password for the duration of the test.
class ScratchAdministrator {
  public:
    ScratchAdministrator() {
        for (const char* tool : {"/usr/bin/sudo", "/usr/sbin/useradd", "/usr/sbin/chpasswd"}) {
            if (::access(tool, X_OK) != 0) {
                missing_ = std::string(tool) + " is not installed";
                return;
            }
        }
        if (::getuid() != 0) {
            missing_ = "only root can make the account that this needs";
            return;
        }
        removeLeftOver();
        if (runProgram({"/usr/sbin/useradd", "-M", name_}).status != 0 ||
            runProgram({"/usr/sbin/chpasswd"}, name_ + ":" + password_ + "\n").status != 0) {
            missing_ = "no account can be made on this computer";
        } else {
            std::ofstream(sudoRules / name_) << name_ << " ALL=(ALL) ALL\n";
            ::chmod((sudoRules / name_).c_str(), 0440);
        }
    }

    ~ScratchAdministrator() {
        if (::getuid() == 0) {
            remove(name_);
        }
    }

    ScratchAdministrator(const ScratchAdministrator&) = delete;
    ScratchAdministrator& operator=(const ScratchAdministrator&) = delete;

    [[nodiscard]] const std::string& missing() const { return missing_; }

    [[nodiscard]] const std::string& password() const { return password_; }

    /// Does `work` as the account, in another process. Returns true when `work` returns true.
    template <class Work>
    [[nodiscard]] bool does(Work work) const {
        const passwd account = *::getpwnam(name_.c_str());
        const pid_t child = ::fork();
        if (child == 0) {
            const bool became = ::setgid(account.pw_gid) == 0 && ::setuid(account.pw_uid) == 0;
            ::_exit(became && work() ? 0 : 1);
        }
        int status = 0;
        return ::waitpid(child, &status, 0) == child && status == 0;
    }

  private:
    static void remove(const std::string& name) {
        // The accounts may be locked because another test is changing them. Remove the rule last, because the
        // next test finds left-over accounts by it.
        constexpr int tries = 100;
        for (int attempt = 0; attempt < tries && ::getpwnam(name.c_str()) != nullptr; ++attempt) {
            if (runProgram({"/usr/sbin/userdel", name}).status != 0) {
                ::usleep(50000);
            }
        }
        std::filesystem::remove(sudoRules / name);
    }

    /// Removes the accounts of killed tests: those whose number is no longer a process.
    static void removeLeftOver() {
        for (const auto& rule : std::filesystem::directory_iterator(sudoRules)) {
            const std::string name = rule.path().filename();
            const std::string number = name.starts_with(namePrefix) ? name.substr(namePrefix.size()) : "";
            if (!number.empty() && std::ranges::all_of(number, ::isdigit) &&
                !std::filesystem::exists("/proc/" + number)) {
                remove(name);
            }
        }
    }

    static inline const std::string namePrefix = "brindle-t";
    static inline const std::filesystem::path sudoRules = "/etc/sudoers.d";

    /// Random, because a killed test leaves the account behind until the next one.
    static std::string randomPassword() {
        std::random_device random;
        std::string text;
        for (int part = 0; part < 4; ++part) {
            text += std::to_string(random());
        }
        return text;
    }

    std::string name_ = namePrefix + std::to_string(::getpid());
    std::string password_ = randomPassword();
    std::string missing_;
};
