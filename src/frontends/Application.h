#pragma once

#include "access/Doctor.h"
#include "platform/appkit/Interface.h"
#include "platform/foundation/Host.h"
#include "review/History.h"
#include "review/Reviewer.h"

#include <memory>
#include <string>
#include <utility>

class NSTableView;

namespace frontend {

/// The application on its host, as every front-end starts it: made with the host's services, given its
/// presenter, loaded, launched.
class Application {
  public:
    explicit Application(platform::Services services);

    /// Puts the front-end in place. Before load().
    void setPresenter(std::shared_ptr<platform::Presenter> presenter);

    /// Loads the main interface file of the bundle, which makes the controller.
    [[nodiscard]] platform::Status load();

    /// Stands before the actions of the main interface; null before load().
    [[nodiscard]] review::Reviewer* reviewer() const { return reviewer_.get(); }

    /// What actions have changed, and how it is taken back.
    [[nodiscard]] const review::History& history() const { return history_; }

    /// Brings the main window on screen and runs start-up, as one event.
    void launch();

    /// Ends the application, unless it has ended: administrator rights are given up. Does nothing before
    /// load().
    void end();

    /// The computer as it is examined. Told before load().
    void setPatient(accesscheck::Patient patient) { patient_ = std::move(patient); }

    [[nodiscard]] const accesscheck::Patient& patient() const { return patient_; }

    /// The table of that name, which the interface has.
    [[nodiscard]] NSTableView& table(const std::string& name) const;

  private:
    accesscheck::Patient patient_;
    review::History history_; ///< stands before the authority of the host's services
    platform::Host host_;
    std::unique_ptr<platform::Interface> interface_; ///< goes before the host, which its controls need
    std::unique_ptr<review::Reviewer> reviewer_;
};

} // namespace frontend
