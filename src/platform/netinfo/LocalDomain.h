#pragma once

#include "platform/netinfo/AccountFiles.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace platform {

/// Which store is the local domain. Every ni_open opens its file afresh.
class LocalDomain {
  public:
    virtual ~LocalDomain() = default;
    /// The store's file. It need not exist: opening it then fails.
    [[nodiscard]] virtual std::string storeFile() const = 0;

    /// The files whose lines are the domain's users and groups; none where all of them are in the store. With
    /// such files the store may be missing: it then holds nothing but the records that always exist.
    [[nodiscard]] virtual std::optional<AccountFiles> accountFiles() const { return std::nullopt; }

    /// The domain by whose accounts a change is judged: for a copy, what it is a copy of.
    [[nodiscard]] virtual const LocalDomain& original() const { return *this; }
};

/// A domain that is one store and nothing else.
class StoreDomain : public LocalDomain {
  public:
    explicit StoreDomain(std::string file) : file_(std::move(file)) {}

    [[nodiscard]] std::string storeFile() const override { return file_; }

  private:
    std::string file_;
};

/// A store that all of another domain was copied to.
class CopiedDomain : public StoreDomain {
  public:
    CopiedDomain(std::string file, std::shared_ptr<const LocalDomain> original)
        : StoreDomain(std::move(file)), original_(std::move(original)) {}

    [[nodiscard]] const LocalDomain& original() const override { return original_->original(); }

  private:
    std::shared_ptr<const LocalDomain> original_;
};

} // namespace platform
