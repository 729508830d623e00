#pragma once

#include "platform/appkit/Presenter.h"

#include <QWidget>

#include <optional>
#include <string>

/// The answer that changes least: the button "Cancel" or "No" where there is one, else the alternate button,
/// else the only one. It is what Escape and closing an alert answer, and what is answered where nobody can be
/// asked.
[[nodiscard]] platform::AlertAnswer harmlessAnswer(const platform::Alert& alert);

// Each blocks until the user has answered. `parent` may be null.
[[nodiscard]] platform::AlertAnswer askAlert(const platform::Alert& alert, QWidget* parent);
[[nodiscard]] std::optional<std::string> askPath(const platform::OpenPanelRequest& request, QWidget* parent);
[[nodiscard]] std::optional<platform::AdministratorAnswer>
askAdministrator(const platform::AdministratorRequest& request, QWidget* parent);
