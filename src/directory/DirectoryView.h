#pragma once

#include "platform/netinfo/ni.h"

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// A directory as it is when it is first read. It keeps writers waiting as long as it lives, and waits for
/// them up to thirty seconds. What cannot be read seems to be missing; failure() says whether that was so.
class DirectoryView {
  public:
    struct Property {
        std::string name;
        std::vector<std::string> values;
    };

    /// A record's properties in order.
    using Record = std::vector<Property>;

    explicit DirectoryView(std::string storeFile);
    /// A view of what `domain` shows.
    explicit DirectoryView(std::shared_ptr<const platform::LocalDomain> domain);

    /// False when the directory cannot be read, so that a missing record may in fact exist.
    [[nodiscard]] bool isReadable() const;

    /// Why something could not be read so far; NI_OK when everything could.
    [[nodiscard]] ni_status failure() const { return failure_; }

    /// The record at `path`; none when there is none.
    [[nodiscard]] std::optional<Record> record(const std::string& path) const;
    /// The records right below `path`.
    [[nodiscard]] std::vector<Record> records(const std::string& path) const;
    /// The names of the records right below `path`.
    [[nodiscard]] std::vector<std::string> names(const std::string& path) const;
    /// The first value of the property; empty when there is none.
    [[nodiscard]] std::string value(const std::string& path, std::string_view property) const;

  private:
    [[nodiscard]] bool open() const;
    [[nodiscard]] std::optional<ni_id> find(const std::string& path) const;
    [[nodiscard]] std::vector<ni_id> findBelow(const std::string& path) const;
    [[nodiscard]] std::optional<Record> read(ni_id id) const;
    [[nodiscard]] std::vector<std::string> values(ni_id id, std::string_view property) const;
    /// Whether there is what was asked for. Remembers a failure to tell.
    [[nodiscard]] bool isThere(ni_status status) const;

    std::string storeFile_;
    std::shared_ptr<const platform::LocalDomain> local_; ///< null: the store alone
    mutable platform::OwnedDomain domain_;
    mutable ni_status failure_ = NI_OK;
};

/// The values of a record's property; empty when it has no such property.
[[nodiscard]] std::span<const std::string> valuesOf(const DirectoryView::Record& record,
                                                    std::string_view property);
/// The first of them; empty when there is none.
[[nodiscard]] std::string firstValueOf(const DirectoryView::Record& record, std::string_view property);
