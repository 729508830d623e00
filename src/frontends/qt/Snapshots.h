#pragma once

#include "frontends/qt/QtPresenter.h"

#include <string>

/// Writes a picture of every page of every loaded interface into `folder`, named after what it shows. Answers
/// false at the first picture that cannot be written; `error` then says which and why.
[[nodiscard]] bool writeSnapshots(QtPresenter& presenter, const std::string& folder, std::string& error);
