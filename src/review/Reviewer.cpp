#include "review/Reviewer.h"

#include "app/BRController.h"
#include "platform/appkit/ActionGate.h"
#include "platform/appkit/NSAlert.h"
#include "platform/appkit/NSButton.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/SystemPaths.h"
#include "platform/foundation/WritersTurn.h"
#include "review/Operations.h"
#include "review/Planner.h"
#include "review/ServerReading.h"
#include "review/Warnings.h"

#include <string_view>

namespace review {

namespace {

/// This operation asks a server on the network, which a plan must not do, and changes nothing.
constexpr std::string_view networkOperation = "checkForNewVersion:";

platform::ActionGate& gate() {
    return platform::Host::current().sharedInstance<platform::ActionGate>();
}

void showNotPossible(const Plan& plan) {
    NSRunAlertPanel(NSLocalizedString("Not Possible"), "%@", NSLocalizedString("OK"), std::nullopt,
                    std::nullopt, plan.blocks.front().sentence);
}

/// Makes the plan for what `perform` does to the copy of `control`.
template <class Perform>
Plan planControl(const platform::Interface& main, const NSControl& control, Perform perform,
                 PlanDepth depth = PlanDepth::Warnings) {
    const std::string operation = control.action().operation;
    if (operation == networkOperation) {
        Plan plan;
        plan.operation = operation;
        return plan;
    }
    const auto action = [&](const Rehearsal& rehearsal) {
        if (NSControl* copy = rehearsal.copyOf(control)) {
            perform(*copy);
        }
    };
    return planOf(main, operation, action, depth);
}

} // namespace

Reviewer::Reviewer(const platform::Interface& main) : main_(main), showBlocked_(&showNotPossible) {
    gate().mayPerform = [this](const NSControl& sender) {
        if (const SMBConf* model = controller().smbConfModel()) {
            textBefore_ = model->textOnDisk();
        }
        return mayPerform(sender);
    };
    gate().didPerform = [this](const NSControl& sender) {
        if (isWriting(sender.action().operation)) {
            takeUpWrittenFile();
        }
    };
}

Reviewer::~Reviewer() {
    gate().mayPerform = nullptr;
    gate().didPerform = nullptr;
}

BRController& Reviewer::controller() const {
    return *static_cast<BRController*>(main_.owner());
}

Plan Reviewer::planPress(const NSControl& control) const {
    return withItsWarnings(planControl(main_, control, [](NSControl& copy) {
        if (auto* button = dynamic_cast<NSButton*>(&copy)) {
            button->performClick();
        } else {
            copy.sendAction();
        }
    }));
}

Plan Reviewer::planAction(const NSControl& control) const {
    return withItsWarnings(planControl(main_, control, [](NSControl& copy) { copy.sendAction(); }));
}

Plan Reviewer::withItsWarnings(Plan plan) const {
    if (!servesPerson_) {
        std::erase_if(plan.warnings, &isForPersonsOnly);
    }
    return plan;
}

Plan Reviewer::planSteps(const NSControl& control) const {
    return planControl(
        main_, control, [](NSControl& copy) { copy.sendAction(); }, PlanDepth::Blocks);
}

Plan Reviewer::planSend(const std::string& operation) const {
    if (const NSControl* control = main_.findWiredTo(operation)) {
        return planAction(*control);
    }
    Plan plan;
    plan.operation = operation;
    plan.failure = stringWithFormat(NSLocalizedString("Nothing in the window sends %@."), operation);
    return plan;
}

bool Reviewer::isMigrationQuestion(const platform::Alert& alert) {
    return alert.title == NSLocalizedString("Shares Are Not Updated for Jaguar");
}

Plan Reviewer::planMigration() const {
    return planOf(main_, "updateSharesFor10pt2:", [](const Rehearsal& rehearsal) {
        rehearsal.controller().updateSharesFor10pt2(nullptr);
    });
}

Plan Reviewer::planUndo(const UndoPlan& undo) const {
    platform::Status status;
    const auto action = [&undo, &status](const Rehearsal& /*rehearsal*/) { status = carryOut(undo); };
    // Carrying out checks the entry's records even if they are all as before already.
    Plan plan = planOfUndo(main_, action, undo.entry.records.empty() && undo.folders.empty());
    if (!status.isOk() && plan.blocks.empty() && plan.failure.empty()) {
        plan.failure = status.text();
    }
    return plan;
}

bool Reviewer::mayMigrate() const {
    const Plan plan = planMigration();
    if (!plan.blocks.empty()) {
        showBlocked_(plan);
    }
    return plan.blocks.empty();
}

void Reviewer::reread() const {
    controller().rereadSMBConf();
}

void Reviewer::rereadAFPSettings() const {
    controller().rereadAFPSettings();
}

void Reviewer::rereadEverything() const {
    controller().rereadEverything();
}

bool Reviewer::hasSMBConfChangedOnDisk() const {
    const SMBConf* model = controller().smbConfModel();
    return model != nullptr && model->unreadableReason().empty() &&
           contentsOfFile(model->Path()).valueOr("") != model->textOnDisk();
}

bool Reviewer::hasUnwrittenSMBConf() const {
    const SMBConf* model = controller().smbConfModel();
    return model != nullptr && model->unreadableReason().empty() &&
           model->writtenText() != SMBConf::ofText(model->textOnDisk())->writtenText();
}

void Reviewer::takeUpWrittenFile() const {
    const SMBConf* model = controller().smbConfModel();
    // A failed write leaves this text unchanged, and the change stays in the model for the next write.
    const bool hasWritten = model != nullptr && model->textOnDisk() != textBefore_;
    if (hasWritten && platform::Host::current().services().keepsLayout && hasUnwrittenSMBConf()) {
        controller().rereadSMBConf();
    }
}

std::multimap<std::string, std::string> Reviewer::otherReadings() const {
    std::multimap<std::string, std::string> sentences;
    if (const SMBConf* model = smbConf()) {
        for (const OtherReading& reading : review::otherReadings(*model)) {
            sentences.emplace(reading.section->ShareName(), reading.sentence);
        }
    }
    return sentences;
}

const SMBConf* Reviewer::smbConf() const {
    return controller().smbConfModel();
}

bool Reviewer::hasSection(const std::string& name) const {
    const SMBConf* model = smbConf();
    return model != nullptr && model->section(name) != nullptr;
}

const std::vector<NormalShare>& Reviewer::shares() const {
    return controller().currentShares();
}

bool Reviewer::askAboutWarnings(const Plan& plan) {
    if (plan.warnings.empty()) {
        return true;
    }
    std::string message;
    for (const Remark& warning : plan.warnings) {
        message += (message.empty() ? "" : "\n") + warning.sentence;
    }
    return NSRunAlertPanel(NSLocalizedString("Review"), "%@", NSLocalizedString("Cancel"),
                           NSLocalizedString("Go On"), std::nullopt, message) == NSAlertAlternateReturn;
}

bool Reviewer::mayPerform(const NSControl& sender) const {
    const WritingOperation* operation = findWritingOperation(sender.action().operation);
    if (operation == nullptr) {
        return true;
    }
    auto& turn = platform::Host::current().sharedInstance<platform::WritersTurn>();
    while (true) {
        Plan plan = question_ ? planAction(sender) : planSteps(sender);
        // Deleting may always be tried.
        if (plan.lacksDirectory && servesPerson_ && !operation->removes) {
            plan.blocks.push_back({"directory", plan.failure});
        }
        if (plan.blocks.empty()) {
            if (question_ && !question_(plan)) {
                return false;
            }
            if (const auto status = turn.take(platform::WritersTurn::actionSeconds); !status.isOk()) {
                plan.blocks.push_back({"busy", status.text()});
            }
        }
        if (!plan.blocks.empty()) {
            showBlocked_(plan);
            return false;
        }
        if (isStillTrue(plan)) {
            return true;
        }
        turn.endAction(); // others wait for nobody while the user is asked again
    }
}

bool Reviewer::isStillTrue(const Plan& plan) const {
    const auto isSame = [](const char* file, const std::string& before) {
        return contentsOfFile(file).valueOr("") == before;
    };
    return !servesPerson_ || !plan.failure.empty() ||
           (isSame(platform::systempath::smbConf, plan.smbConfBefore) &&
            isSame(platform::systempath::appleFileServer, plan.afpBefore));
}

} // namespace review
