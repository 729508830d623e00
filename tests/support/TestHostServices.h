#pragma once

#include "platform/netinfo/LocalDomain.h"
#include "platform/posix/InputOutput.h"
#include "support/TestHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include <grp.h>
#include <pwd.h>
#include <sys/mman.h>
#include <unistd.h>

/// The services of a TestHost: each answers as the test has prepared, and records the requests.
namespace testhost {

namespace fs = std::filesystem;

struct QueuedAnswer {
    std::string title;
    std::string button;
};

struct QueuedPath {
    std::optional<std::string> path;
};

struct RunningTimer {
    platform::TimerId id;
    std::function<void()> fire;
};

/// The state that the services of a host share with their TestHost.
struct State {
    explicit State(TestHost& host) : seen(host) {}

    TestHost& seen;
    fs::path root;
    fs::path resources;
    std::deque<QueuedAnswer> answers;
    std::deque<QueuedPath> paths;
    bool mayAnswerUnasked = false;
    std::vector<RunningTimer> timers;
    platform::TimerId lastTimer = 0;

    void happened(const std::string& event) const { seen.events.push_back(event); }
};

/// Returns a descriptor from which `bytes` can be read, however many they are; -1 with errno set on failure.
inline int descriptorHolding(std::string_view bytes) {
    const int descriptor = ::memfd_create("brindle-test", MFD_CLOEXEC);
    if (descriptor >= 0 && !platform::writeAll(descriptor, bytes, "a tool's output").isOk()) {
        throw std::system_error(errno, std::generic_category(), "a tool's output could not be kept");
    }
    if (descriptor >= 0) {
        ::lseek(descriptor, 0, SEEK_SET);
    }
    return descriptor;
}

class CapturedLog : public platform::Log {
  public:
    explicit CapturedLog(State& state) : state_(state) {}

    void write(std::string_view text) override {
        state_.seen.log.emplace_back(text);
        state_.happened("log " + std::string(text));
    }

  private:
    State& state_;
};

class SetClock : public platform::Clock {
  public:
    explicit SetClock(State& state) : state_(state) {}

    [[nodiscard]] double now() const override { return state_.seen.now; }

  private:
    State& state_;
};

class RootedPaths : public platform::Paths {
  public:
    explicit RootedPaths(State& state) : state_(state) {}

    [[nodiscard]] std::string map(const std::string& path) const override {
        if (path == "/etc/smb.conf" || path == "/Library/Preferences/com.apple.AppleFileServer.plist") {
            return state_.root.string() + path;
        }
        return path;
    }

    [[nodiscard]] std::string home() const override { return state_.seen.home().string(); }

    [[nodiscard]] std::string defaultsFile() const override {
        return (state_.seen.home() / ".config" / "brindle" / "defaults.plist").string();
    }

    [[nodiscard]] std::string resources() const override { return state_.resources.string(); }

  private:
    State& state_;
};

class MachineNames : public platform::AccountNames {
  public:
    [[nodiscard]] std::optional<std::string> userName(uid_t uid) const override {
        const passwd* account = ::getpwuid(uid);
        return account == nullptr ? std::nullopt : std::optional<std::string>(account->pw_name);
    }

    [[nodiscard]] std::optional<std::string> groupName(gid_t gid) const override {
        const group* account = ::getgrgid(gid);
        return account == nullptr ? std::nullopt : std::optional<std::string>(account->gr_name);
    }
};

class ToldProcesses : public platform::Processes {
  public:
    explicit ToldProcesses(State& state) : state_(state) {}

    [[nodiscard]] std::FILE* open(const std::string& command, const char* mode) override {
        const auto listing =
            state_.seen.onListing ? state_.seen.onListing(command) : std::optional<std::string>("");
        if (!listing) {
            errno = EMFILE;
            return nullptr;
        }
        const int descriptor = descriptorHolding(*listing);
        return descriptor < 0 ? nullptr : ::fdopen(descriptor, mode);
    }

    int close(std::FILE* stream) override { return std::fclose(stream); }

  private:
    State& state_;
};

class RootedDomain : public platform::LocalDomain {
  public:
    explicit RootedDomain(State& state) : state_(state) {}

    [[nodiscard]] std::string storeFile() const override {
        if (state_.seen.onReport) {
            state_.seen.onReport();
        }
        return state_.seen.storeFile().string();
    }

  private:
    State& state_;
};

class RecordingAuthority : public platform::Authority {
  public:
    explicit RecordingAuthority(State& state) : state_(state) {}

    [[nodiscard]] std::unique_ptr<platform::AuthorizationSession> createSession(OSStatus*) override {
        return state_.seen.makesSessions ? std::make_unique<platform::AuthorizationSession>() : nullptr;
    }

    [[nodiscard]] OSStatus copyRights(platform::AuthorizationSession&, const AuthorizationRights& rights,
                                      AuthorizationFlags flags) override {
        TestHost& seen = state_.seen;
        seen.rightsRequests.push_back({rights, flags});
        if (seen.rightHeld) {
            return errAuthorizationSuccess;
        }
        if ((flags & kAuthorizationFlagInteractionAllowed) == 0) {
            return errAuthorizationInteractionNotAllowed;
        }
        ++seen.administratorDialogs;
        state_.happened(seen.administratorAllows ? "administrator allow" : "administrator refuse");
        seen.rightHeld = seen.administratorAllows;
        return seen.rightHeld ? errAuthorizationSuccess : errAuthorizationCanceled;
    }

    void destroyRights(platform::AuthorizationSession&) override { state_.seen.rightHeld = false; }

    [[nodiscard]] OSStatus execute(platform::AuthorizationSession&, const std::string& tool,
                                   std::span<const std::string> arguments, std::string* output) override {
        TestHost& seen = state_.seen;
        const RecordedRun run{tool, {arguments.begin(), arguments.end()}};
        seen.runs.push_back(run);
        state_.happened("run " + run.text());
        const TestHost::RunAnswer answer = seen.onRun ? seen.onRun(run) : TestHost::RunAnswer{};
        if (answer.status != errAuthorizationSuccess || output == nullptr) {
            return answer.status;
        }
        *output = answer.output;
        return errAuthorizationSuccess;
    }

  private:
    State& state_;
};

class RecordingPresenter : public platform::Presenter {
  public:
    explicit RecordingPresenter(State& state) : state_(state) {}

    [[nodiscard]] platform::AlertAnswer runAlert(const platform::Alert& alert) override {
        state_.seen.alerts.push_back(alert);
        state_.happened("alert " + alert.title);
        auto& answers = state_.answers;
        const auto found = std::ranges::find(answers, alert.title, &QueuedAnswer::title);
        if (found == answers.end()) {
            EXPECT_TRUE(state_.mayAnswerUnasked)
                << "there is no answer for the alert \"" << alert.title << "\": " << alert.message;
            return platform::AlertAnswer::Default;
        }
        const std::string button = found->button;
        answers.erase(found);
        if (button == alert.alternateButton) {
            return platform::AlertAnswer::Alternate;
        }
        if (button == alert.otherButton) {
            return platform::AlertAnswer::Other;
        }
        EXPECT_EQ(button, alert.defaultButton) << "the alert \"" << alert.title << "\" has no such button";
        return platform::AlertAnswer::Default;
    }

    [[nodiscard]] std::optional<std::string>
    runOpenPanel(const platform::OpenPanelRequest& request) override {
        state_.seen.panels.push_back(request);
        std::optional<std::string> chosen;
        if (!state_.paths.empty()) {
            chosen = state_.paths.front().path;
            state_.paths.pop_front();
        }
        state_.happened("panel " + chosen.value_or("cancel"));
        return chosen;
    }

    [[nodiscard]] std::optional<platform::AdministratorAnswer>
    runAdministratorDialog(const platform::AdministratorRequest& request) override {
        ++state_.seen.administratorDialogs;
        state_.seen.administratorRequests.push_back(request);
        if (!state_.seen.administratorAllows) {
            state_.happened("administrator refuse");
            return std::nullopt;
        }
        state_.happened("administrator allow");
        platform::AdministratorAnswer answer;
        if (!state_.seen.passwords.empty()) {
            answer.password = state_.seen.passwords.front();
            state_.seen.passwords.pop_front();
        }
        return answer;
    }

    void beep() override {
        ++state_.seen.beeps;
        state_.happened("beep");
    }

    void openAddress(const std::string& address) override {
        state_.seen.opened.push_back(address);
        state_.happened("open " + address);
    }

    [[nodiscard]] platform::TimerId startTimer(double, std::function<void()> fire) override {
        state_.timers.push_back({++state_.lastTimer, std::move(fire)});
        return state_.lastTimer;
    }

    void stopTimer(platform::TimerId timer) override {
        std::erase_if(state_.timers, [timer](const RunningTimer& running) { return running.id == timer; });
    }

    void interfaceDidLoad(platform::Interface& interface) override {
        state_.seen.loadedInterface = &interface;
    }

    void windowVisibilityDidChange(NSWindow&) override {}

    void editWasRefused(const NSTextField&, const std::string& errorText) override {
        state_.seen.refusals.push_back(errorText);
        state_.happened("refusal " + errorText);
    }

    void applicationDidTerminate() override { state_.happened("terminate"); }

    void toolWillRun(const std::string& tool, std::span<const std::string> arguments) override {
        state_.seen.shownRuns.push_back(RecordedRun{tool, {arguments.begin(), arguments.end()}}.text());
    }

    void toolDidWrite(std::string_view output) override { state_.seen.shownOutputs.emplace_back(output); }

  private:
    State& state_;
};

} // namespace testhost
