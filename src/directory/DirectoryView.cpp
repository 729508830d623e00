#include "directory/DirectoryView.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

DirectoryView::DirectoryView(std::string storeFile) : storeFile_(std::move(storeFile)) {}

DirectoryView::DirectoryView(std::shared_ptr<const platform::LocalDomain> domain)
    : local_(std::move(domain)) {}

bool DirectoryView::isThere(ni_status status) const {
    // A record that has been deleted meanwhile is missing, too.
    const bool isMissing = status == NI_NODIR || status == NI_NOPROP || status == NI_BADID;
    failure_ = failure_ == NI_OK && !isMissing ? status : failure_;
    return status == NI_OK;
}

bool DirectoryView::open() const {
    if (domain_ == nullptr) {
        ni_domain* opened = nullptr;
        const ni_status status = local_ ? ni_opendomain(*local_, &opened) : ni_openfile(storeFile_, &opened);
        if (!isThere(status)) {
            return false;
        }
        domain_.reset(opened);
        ni_setabort(opened, 1); // without this it would wait for ever
    }
    return true;
}

bool DirectoryView::isReadable() const {
    return find("/").has_value();
}

std::optional<ni_id> DirectoryView::find(const std::string& path) const {
    ni_id id;
    return open() && isThere(ni_root(domain_.get(), &id)) &&
                   isThere(ni_pathsearch(domain_.get(), &id, path.c_str()))
               ? std::optional(id)
               : std::nullopt;
}

std::vector<ni_id> DirectoryView::findBelow(const std::string& path) const {
    auto id = find(path);
    ni_idlist children;
    if (!id || !isThere(ni_children(domain_.get(), &*id, &children))) {
        return {};
    }
    std::vector<ni_id> found;
    std::ranges::transform(children.niil_val, std::back_inserter(found),
                           [](std::uint32_t child) { return ni_id{child}; });
    return found;
}

std::vector<std::string> DirectoryView::values(ni_id id, std::string_view property) const {
    ni_namelist values;
    return isThere(ni_lookupprop(domain_.get(), &id, property, &values))
               ? std::vector<std::string>(values.ninl_val.begin(), values.ninl_val.end())
               : std::vector<std::string>();
}

std::optional<DirectoryView::Record> DirectoryView::read(ni_id id) const {
    ni_namelist names;
    if (!isThere(ni_listprops(domain_.get(), &id, &names))) {
        return std::nullopt;
    }
    Record record;
    for (const std::string_view name : names.ninl_val) {
        record.push_back({std::string(name), values(id, name)});
    }
    return record;
}

std::optional<DirectoryView::Record> DirectoryView::record(const std::string& path) const {
    const auto id = find(path);
    return id ? read(*id) : std::nullopt;
}

std::vector<DirectoryView::Record> DirectoryView::records(const std::string& path) const {
    std::vector<Record> records;
    for (const ni_id id : findBelow(path)) {
        if (auto record = read(id)) {
            records.push_back(std::move(*record));
        }
    }
    return records;
}

std::vector<std::string> DirectoryView::names(const std::string& path) const {
    std::vector<std::string> names;
    for (const ni_id id : findBelow(path)) {
        if (auto name = values(id, "name"); !name.empty()) {
            names.push_back(std::move(name.front()));
        }
    }
    return names;
}

std::string DirectoryView::value(const std::string& path, std::string_view property) const {
    const auto found = record(path);
    return found ? firstValueOf(*found, property) : std::string();
}

std::span<const std::string> valuesOf(const DirectoryView::Record& record, std::string_view property) {
    const auto found = std::ranges::find(record, property, &DirectoryView::Property::name);
    return found == record.end() ? std::span<const std::string>() : found->values;
}

std::string firstValueOf(const DirectoryView::Record& record, std::string_view property) {
    const auto values = valuesOf(record, property);
    return values.empty() ? std::string() : values.front();
}
