#pragma once

#include "directory/DirectoryView.h"
#include "review/AccountForecast.h"
#include "review/HistoryEntry.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace review {

/// The present accounts, as far as an undo depends on those that its entry has not changed.
class UndoAccounts {
  public:
    /// `directory` must outlive this.
    explicit UndoAccounts(const DirectoryView& directory) : directory_(directory) {}

    /// The name to give to chown for the owner, or the group, with this number; empty when there is none.
    [[nodiscard]] std::string ownerName(uid_t number) const;
    [[nodiscard]] std::string groupName(gid_t number) const;

    /// The number of the account at `path` in that state; empty when it has none, or is no account.
    [[nodiscard]] static std::string numberOf(const std::string& path, const RecordChange::State& state);
    /// The paths of all accounts of the same kind as the one at `path` that have this number.
    [[nodiscard]] std::vector<std::string> withNumber(const std::string& path, const std::string& number);
    /// The paths of the groups that list the user.
    [[nodiscard]] std::vector<std::string> groupsOf(const std::string& user);

    /// Whether `change` has taken members out of a group that exists still, and that the computer's tools are
    /// bound not to put back.
    [[nodiscard]] bool losesMembers(const RecordChange& change);

  private:
    /// Paths of accounts by a value.
    using Index = std::map<std::string, std::vector<std::string>>;

    [[nodiscard]] std::string nameFor(const std::optional<std::string>& name, std::string_view folder,
                                      unsigned number) const;
    [[nodiscard]] const Index& index(std::string_view folder, const std::string& property);

    const DirectoryView& directory_;
    std::map<std::string, Index> indices_; ///< by folder and property: an entry may hold thousands of records
    std::optional<AccountForecast> rules_;
    bool hasReadRules_ = false;
};

} // namespace review
