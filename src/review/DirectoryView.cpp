#include "review/DirectoryView.h"

#include "platform/netinfo/ni.h"

#include <utility>

namespace review {

struct DirectoryView::Domain {
    ni_domain* domain = nullptr;

    ~Domain() {
        if (domain != nullptr) {
            ni_free(domain);
        }
    }
};

DirectoryView::DirectoryView(std::string storeFile) : storeFile_(std::move(storeFile)) {}

DirectoryView::DirectoryView(std::shared_ptr<const platform::LocalDomain> domain)
    : local_(std::move(domain)) {}

DirectoryView::~DirectoryView() = default;
DirectoryView::DirectoryView(DirectoryView&& other) noexcept = default;

DirectoryView::Domain* DirectoryView::open() const {
    if (!domain_) {
        domain_ = std::make_unique<Domain>();
        const ni_status status =
            local_ ? ni_opendomain(*local_, &domain_->domain) : ni_openfile(storeFile_, &domain_->domain);
        if (status == NI_OK) {
            constexpr int seconds = 30;
            ni_setabort(domain_->domain, 1);
            ni_setreadtimeout(domain_->domain, seconds);
        }
    }
    return domain_->domain == nullptr ? nullptr : domain_.get();
}

bool DirectoryView::isReadable() const {
    const Domain* opened = open();
    ni_id id;
    return opened != nullptr && ni_root(opened->domain, &id) == NI_OK;
}

std::optional<std::vector<DirectoryView::Property>> DirectoryView::record(const std::string& path) const {
    const Domain* opened = open();
    ni_id id;
    if (opened == nullptr || ni_root(opened->domain, &id) != NI_OK ||
        ni_pathsearch(opened->domain, &id, path.c_str()) != NI_OK) {
        return std::nullopt;
    }
    ni_namelist names;
    if (ni_listprops(opened->domain, &id, &names) != NI_OK) {
        return std::nullopt;
    }
    std::vector<Property> properties;
    for (const std::string_view name : names.ninl_val) {
        ni_namelist values;
        static_cast<void>(
            ni_lookupprop(opened->domain, &id, name, &values)); // it was listed above, so it exists
        properties.push_back({std::string(name), {values.ninl_val.begin(), values.ninl_val.end()}});
    }
    return properties;
}

std::string DirectoryView::value(const std::string& path, std::string_view property) const {
    const auto properties = record(path);
    for (const Property& each : properties.value_or(std::vector<Property>())) {
        if (each.name == property && !each.values.empty()) {
            return each.values.front();
        }
    }
    return {};
}

std::vector<std::string> DirectoryView::names(const std::string& path) const {
    const Domain* opened = open();
    ni_id id;
    ni_idlist children;
    std::vector<std::string> names;
    if (opened == nullptr || ni_root(opened->domain, &id) != NI_OK ||
        ni_pathsearch(opened->domain, &id, path.c_str()) != NI_OK ||
        ni_children(opened->domain, &id, &children) != NI_OK) {
        return names;
    }
    for (const auto child : children.niil_val) {
        ni_id record{child};
        ni_namelist values;
        if (ni_lookupprop(opened->domain, &record, "name", &values) == NI_OK && !values.ninl_val.empty()) {
            names.emplace_back(values.ninl_val.front());
        }
    }
    return names;
}

} // namespace review
