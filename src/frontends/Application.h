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

/// The application on its host. Every front-end makes it with the host's services, then calls setPresenter(),
/// load() and launch(), in this order.
class Application {
  public:
    explicit Application(platform::Services services);

    /// Installs the front-end. Must come before load().
    void setPresenter(std::shared_ptr<platform::Presenter> presenter);

    /// Loads the bundle's main interface file, which creates the controller.
    [[nodiscard]] platform::Status load();

    /// The reviewer, which intercepts the actions of the main interface; null before load().
    [[nodiscard]] review::Reviewer* reviewer() const { return reviewer_.get(); }

    /// The record of what actions have changed, from which changes are undone.
    [[nodiscard]] const review::History& history() const { return history_; }

    /// Brings the main window on screen and runs start-up, as one event.
    void launch();

    /// Ends the application, which gives up administrator rights. Does nothing before load() or when it has
    /// already ended.
    void end();

    /// Says which computer the doctor examines. Must come before load().
    void setExaminedHost(accesscheck::ExaminedHost host) { examinedHost_ = std::move(host); }

    [[nodiscard]] const accesscheck::ExaminedHost& examinedHost() const { return examinedHost_; }

    /// Returns the table with that name. Throws std::logic_error when the interface has none.
    [[nodiscard]] NSTableView& table(const std::string& name) const;

  private:
    accesscheck::ExaminedHost examinedHost_;
    review::History history_; ///< wraps the authority in the host's services
    platform::Host host_;
    std::unique_ptr<platform::Interface> interface_; ///< destroyed before the host, which its controls need
    std::unique_ptr<review::Reviewer> reviewer_;
};

} // namespace frontend
