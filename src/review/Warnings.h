#pragma once

#include "app/BRController.h"
#include "directory/DirectoryView.h"
#include "model/ServerSettings.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "review/Plan.h"

#include <string>
#include <string_view>
#include <vector>

namespace review {

/// A planned action, with the state before and after it.
struct Situation {
    const Plan& plan;
    const BRController& before; ///< the application
    const BRController& after;  ///< its copy after the action
    DirectoryView directoryBefore;
    DirectoryView directoryAfter;

    [[nodiscard]] bool is(std::string_view operation) const { return plan.operation == operation; }

    /// Whether the plan writes smb.conf.
    [[nodiscard]] bool writesSMBConf() const;
};

/// A warning whose sentence is the text with that key, with the arguments in it.
template <class... Arguments>
[[nodiscard]] Remark remark(std::string_view code, const std::string& key, const Arguments&... arguments) {
    return {code, stringWithFormat(NSLocalizedString(key), arguments...)};
}

/// The first six of the things, and how many more there are.
[[nodiscard]] std::string listOf(const std::vector<std::string>& things);

/// What might surprise the user when the plan is carried out. Each warning is a sentence that names what it
/// is about.
[[nodiscard]] std::vector<Remark> warningsOf(const Situation& situation);

/// Whether the warning is for people only: the script language has a fixed list.
[[nodiscard]] bool isForPersonsOnly(const Remark& warning);

/// The warning that a setting of smb.conf changes although nobody touched its control. `key` is its name
/// where neither section has it.
[[nodiscard]] Remark untouchedSetting(const std::string& section, std::string_view key,
                                      const ServerSetting& before, const ServerSetting& after);

// Each of these adds one group of warnings.
void addFileWarnings(const Situation& situation, std::vector<Remark>* warnings);    // smb.conf as a file
void addShareWarnings(const Situation& situation, std::vector<Remark>* warnings);   // sections and records
void addFolderWarnings(const Situation& situation, std::vector<Remark>* warnings);  // the shared folder
void addAccountWarnings(const Situation& situation, std::vector<Remark>* warnings); // users and groups
void addSettingWarnings(const Situation& situation,
                        std::vector<Remark>* warnings); // the two servers' settings
/// Adds testparm's complaints about the new smb.conf that it does not have about the old one.
void addServerWarnings(const Situation& situation, std::vector<Remark>* warnings);

} // namespace review
