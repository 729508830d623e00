#pragma once

#include "platform/netinfo/AccountFiles.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace platform {

/// Names the store of the local domain. Every ni_open opens its file again.
class LocalDomain {
  public:
    virtual ~LocalDomain() = default;
    /// The store's file. If it does not exist, opening it fails, unless accountFiles() says otherwise.
    [[nodiscard]] virtual std::string storeFile() const = 0;

    /// The files whose lines are the domain's users and groups; none when all of them are in the store. With
    /// such files the store may be missing; the domain then behaves as if it held only the records that
    /// always exist.
    [[nodiscard]] virtual std::optional<AccountFiles> accountFiles() const { return std::nullopt; }

    /// The domain whose accounts decide whether a change is allowed: for a copy the domain that was copied.
    [[nodiscard]] virtual const LocalDomain& original() const { return *this; }
};

/// A domain that consists of one store.
class StoreDomain : public LocalDomain {
  public:
    explicit StoreDomain(std::string file) : file_(std::move(file)) {}

    [[nodiscard]] std::string storeFile() const override { return file_; }

  private:
    std::string file_;
};

/// The directory of this computer, whose accounts are in the computer's own files.
class ComputersDomain : public StoreDomain {
  public:
    using StoreDomain::StoreDomain;

    [[nodiscard]] std::optional<AccountFiles> accountFiles() const override { return AccountFiles(); }
};

/// A store into which the whole of another domain was copied.
class CopiedDomain : public StoreDomain {
  public:
    CopiedDomain(std::string file, std::shared_ptr<const LocalDomain> original)
        : StoreDomain(std::move(file)), original_(std::move(original)) {}

    [[nodiscard]] const LocalDomain& original() const override { return original_->original(); }

  private:
    std::shared_ptr<const LocalDomain> original_;
};

} // namespace platform
