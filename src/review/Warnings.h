#pragma once

#include "app/BRController.h"
#include "review/DirectoryView.h"
#include "review/Plan.h"

#include <vector>

namespace review {

/// A planned action, and the state that it was planned on.
struct Situation {
    const Plan& plan;
    const BRController& before; ///< the application as it is
    const BRController& after;  ///< its copy after the action
    DirectoryView directoryBefore;
    DirectoryView directoryAfter;

    [[nodiscard]] bool is(std::string_view operation) const { return plan.operation == operation; }

    /// Whether the plan copies a text over smb.conf.
    [[nodiscard]] bool writesSMBConf() const;
};

/// What would surprise somebody who carries the plan out, each as a sentence that names what it is about.
[[nodiscard]] std::vector<Remark> warningsOf(const Situation& situation);

// Each of these adds one group of warnings.
void addFileWarnings(const Situation& situation, std::vector<Remark>* warnings);    // smb.conf as a file
void addShareWarnings(const Situation& situation, std::vector<Remark>* warnings);   // sections and records
void addFolderWarnings(const Situation& situation, std::vector<Remark>* warnings);  // the shared folder
void addAccountWarnings(const Situation& situation, std::vector<Remark>* warnings); // users and groups
void addSettingWarnings(const Situation& situation,
                        std::vector<Remark>* warnings); // the two servers' settings
/// Whether testparm finds fault with the new smb.conf and not with the old one.
void addServerWarnings(const Situation& situation, std::vector<Remark>* warnings);

} // namespace review
