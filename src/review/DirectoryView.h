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

/// A directory as it is when it is first read. What cannot be read seems to be missing.
class DirectoryView {
  public:
    explicit DirectoryView(std::string storeFile);
    /// A view of what `domain` shows.
    explicit DirectoryView(std::shared_ptr<const platform::LocalDomain> domain);
    ~DirectoryView();
    DirectoryView(DirectoryView&& other) noexcept;

    /// False when the directory cannot be read, so that a missing record may in fact exist.
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
