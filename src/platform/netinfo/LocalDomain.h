#pragma once

#include <string>

namespace platform {

/// Which store is the local domain. Every ni_open opens its file afresh.
class LocalDomain {
  public:
    virtual ~LocalDomain() = default;
    /// The store's file. It need not exist: opening it then fails.
    [[nodiscard]] virtual std::string storeFile() const = 0;
};

} // namespace platform
