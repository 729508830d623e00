#pragma once

#include "access/ServerShare.h"

#include <optional>
#include <string>

namespace frontend {

/// What the SMB server shares by smb.conf. The list of shares may show less: it joins the sections of one
/// folder, and leaves out those whose headers only the server reads.
class ServedShares {
  public:
    /// Refers to the model, which must outlive this object.
    explicit ServedShares(const SMBConf& conf) : conf_(conf), shares_(conf) {}

    /// Whether the server shares something under this name, whatever the case.
    [[nodiscard]] bool has(const std::string& name) const;
    /// The same for this folder.
    [[nodiscard]] bool has(const std::string& name, const std::string& folder) const;
    /// Whether the server lets guests use the share; none when it does not share anything under this name.
    [[nodiscard]] std::optional<bool> letsGuestsIn(const std::string& name) const;

  private:
    [[nodiscard]] const accesscheck::ServerShare* find(const std::string& name) const;

    const SMBConf& conf_;
    accesscheck::ServerShares shares_;
};

} // namespace frontend
