#pragma once

#include "platform/foundation/Services.h"
#include "review/Plan.h"
#include "tools/HelperFolders.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace review {

/// What the runs of a plan would have changed about folders so far. The folders themselves do not change.
class FolderForecasts : public platform::FolderForecast {
  public:
    /// `outer` is the forecast of an enclosing plan; may be null.
    explicit FolderForecasts(std::shared_ptr<platform::FolderForecast> outer) : outer_(std::move(outer)) {}

    void apply(struct stat& status) const override;

    /// Records what a tool would do to the folder at `path`.
    void add(const std::string& path, const tools::FolderOrder& order);

    /// Each folder that a run has named, with its state before and after all runs, in the order in which the
    /// folders were first named.
    [[nodiscard]] std::vector<FolderChange> changes(const platform::AccountNames& names) const;

  private:
    using Identity = std::pair<dev_t, ino_t>;

    struct Forecast {
        std::string path;

        struct stat before {};

        std::optional<uid_t> owner;
        std::optional<gid_t> group;
        std::optional<mode_t> mode;
    };

    std::shared_ptr<platform::FolderForecast> outer_;
    std::map<Identity, Forecast> forecasts_;
    std::vector<Identity> order_;
};

} // namespace review
