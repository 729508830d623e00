#pragma once

#include "platform/appkit/Presenter.h"

#include <QWidget>

#include <optional>
#include <string>

namespace frontend {

/// Returns the button that changes least: "Cancel" or "No" if there is one, else the alternate button, else
/// the only one. Escape and closing the alert choose it, and so does a run in which nobody can be asked.
[[nodiscard]] platform::AlertAnswer harmlessAnswer(const platform::Alert& alert);

/// True for an alert that is neither a question about a change nor a failure.
[[nodiscard]] bool isInformation(const platform::Alert& alert);

// Each of these blocks until the user has answered. `parent` may be null.
[[nodiscard]] platform::AlertAnswer askAlert(const platform::Alert& alert, QWidget* parent);
[[nodiscard]] std::optional<std::string> askPath(const platform::OpenPanelRequest& request, QWidget* parent);
[[nodiscard]] std::optional<platform::AdministratorAnswer>
askAdministrator(const platform::AdministratorRequest& request, QWidget* parent);

} // namespace frontend
