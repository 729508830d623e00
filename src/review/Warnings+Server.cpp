#include "review/Warnings.h"

#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/NSString.h"
#include "platform/posix/Process.h"
#include "platform/samba/InstalledSamba.h"
#include "review/TextDifference.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>

namespace review {

namespace {

namespace fs = std::filesystem;

/// What testparm writes for every text.
constexpr std::array<std::string_view, 6> usualWords = {
    "Load smb config files", "Loaded services file", "Weak crypto is allowed",
    "Server role:",          "rlimit_max:",          "Processing section"};

/// testparm looks names up on the network, and a slow network must not keep a plan waiting.
constexpr std::chrono::seconds timeLimit{5};

/// A temporary folder for the texts, removed by the destructor.
class TextFolder {
  public:
    TextFolder() {
        std::error_code error;
        std::string pattern = (fs::temp_directory_path(error) / "brindle-testparm-XXXXXX").string();
        path_ = !error && ::mkdtemp(pattern.data()) != nullptr ? pattern : std::string();
    }

    ~TextFolder() {
        std::error_code ignored; // the system cleans its folder for temporary files
        fs::remove_all(path_, ignored);
    }

    TextFolder(const TextFolder&) = delete;
    TextFolder& operator=(const TextFolder&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }

  private:
    std::string path_;
};

/// The complaints of testparm about the text, one per line.
std::vector<std::string> faultsOf(const std::string& text, const std::string& file) {
    std::vector<std::string> faults;
    if (!writeToFileAtomically(file, text, 0600).isOk()) {
        return faults;
    }
    const platform::Command command{{platform::sambaCommand("testparm"), "-s", "--suppress-prompt", file},
                                    platform::ErrorOutput::Apart,
                                    {"PATH=/usr/bin:/bin", "LC_ALL=C"}};
    const auto run = platform::runProcess(command, {}, timeLimit);
    if (!run.isOk()) {
        return faults; // without testparm's result there is nothing to warn of
    }
    for (const std::string_view line : linesOf(run->errors)) {
        const bool isUsual = line.empty() || std::ranges::any_of(usualWords, [line](std::string_view words) {
                                 return line.starts_with(words);
                             });
        if (!isUsual) {
            faults.emplace_back(line.substr(0, line.find_last_not_of('.') + 1)); // the sentence has its own
        }
    }
    return faults;
}

} // namespace

void addServerWarnings(const Situation& situation, std::vector<Remark>* warnings) {
    const Plan& plan = situation.plan;
    if (plan.smbConfBefore == plan.smbConfAfter || platform::sambaCommand("testparm").empty()) {
        return;
    }
    const TextFolder folder;
    if (folder.path().empty()) {
        return;
    }
    const std::string file =
        folder.path() + "/smb.conf"; // the same name for both texts, because some complaints contain it
    const std::vector<std::string> before = faultsOf(plan.smbConfBefore, file);
    for (const std::string& fault : faultsOf(plan.smbConfAfter, file)) {
        if (std::ranges::find(before, fault) == before.end()) {
            warnings->push_back(
                {"server-complains",
                 stringWithFormat(NSLocalizedString("The SMB server finds fault with the new smb.conf: %@."),
                                  fault)});
        }
    }
}

} // namespace review
