// How long it takes to plan an action with 10,000 users and 1,000 shares: only the steps, as the check before
// every action needs them, and with all warnings, which includes testparm's own time if smb.conf changes.

#include "FilledRoot.h"
#include "TemporaryFolder.h"
#include "app/BRController.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/SilentPresenter.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "review/Reviewer.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

namespace {

constexpr int users = 10000;
constexpr int shares = 1000;

/// The application on such a root, with a share, a user and a new user's name in the editors.
class Application {
  public:
    Application() : host_(services(folder_)) {
        host_.setPresenter(std::make_shared<platform::SilentPresenter>());
        interface_ = std::move(*BRController::loadInterface());
        reviewer_ = std::make_unique<review::Reviewer>(*interface_);
        auto& controller = *static_cast<BRController*>(interface_->owner());
        controller.startUp();
        controller.normalTableView->selectRow(shares / 2);
        controller.userTableView->selectRow(users / 2);
        controller.groupPopUp->selectItemAtIndex(0);
    }

    [[nodiscard]] review::Plan plan(const std::string& operation, bool withWarnings) const {
        const NSControl& sender = *interface_->findWiredTo(operation);
        return withWarnings ? reviewer_->planAction(sender) : reviewer_->planSteps(sender);
    }

  private:
    static platform::Services services(const TemporaryFolder& folder) {
        fillRoot(folder.path(), shares, users);
        return *platform::makeEmbeddedServices(optionsFor(folder.path().string()));
    }

    TemporaryFolder folder_;
    platform::Host host_;
    std::unique_ptr<platform::Interface> interface_;
    std::unique_ptr<review::Reviewer> reviewer_;
};

void plan(benchmark::State& state, const std::string& operation, bool withWarnings) {
    const Application application;
    std::size_t runs = 0;
    for (auto _ : state) {
        runs = application.plan(operation, withWarnings).runs.size();
    }
    if (runs == 0) {
        state.SkipWithError("the plan is empty");
    }
}

BENCHMARK_CAPTURE(plan, update_share, "createShare:", false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(plan, update_share_warnings, "createShare:", true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(plan, delete_share, "deleteShare:", false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(plan, update_user, "addNewUser:", false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(plan, update_user_warnings, "addNewUser:", true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(plan, share_public_folder, "enableSelectedPublicShare:", false)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(plan, save_smb_settings, "updateSMBProperties:", false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(plan, every_public_folder, "enableAllPublicShares:", true)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
