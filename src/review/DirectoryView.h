#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {
class LocalDomain;
} // namespace platform

namespace review {

/// A directory as it is when something is first asked of it. What cannot be read is not there.
class DirectoryView {
  public:
    explicit DirectoryView(std::string storeFile);
    /// What `domain` shows.
    explicit DirectoryView(std::shared_ptr<const platform::LocalDomain> domain);
    ~DirectoryView();
    DirectoryView(DirectoryView&& other) noexcept;

    /// False when nothing can be read of it, so that what is asked for is not known to be missing.
    [[nodiscard]] bool isReadable() const;

    /// The record at `path`, with its properties in order; none when there is none.
    struct Property {
        std::string name;
        std::vector<std::string> values;
    };

    [[nodiscard]] std::optional<std::vector<Property>> record(const std::string& path) const;
    /// The first value of the property; empty when there is none.
    [[nodiscard]] std::string value(const std::string& path, std::string_view property) const;
    /// The names of the records right below `path`.
    [[nodiscard]] std::vector<std::string> names(const std::string& path) const;

  private:
    struct Domain;

    [[nodiscard]] Domain* open() const;

    std::string storeFile_;
    std::shared_ptr<const platform::LocalDomain> local_; ///< null: the store alone
    mutable std::unique_ptr<Domain> domain_;
};

} // namespace review
