#pragma once

#include "platform/appkit/Element.h"

#include <functional>
#include <string_view>
#include <vector>

namespace platform {

/// An object with outlets: pointers to the controls of an interface file. Loading the file sets every one of
/// them, and the Interface owns what they point to. An outlet is a member whose initializer registers it
/// under its own name:
///
///     NSButton* lockButton = outlet("lockButton", lockButton);
class OutletOwner {
  public:
    struct Outlet {
        std::string_view name;
        /// Returns false, and leaves the outlet null, when the element is null or of another kind.
        std::function<bool(Element* element)> set;
    };

    OutletOwner(const OutletOwner&) = delete;
    OutletOwner& operator=(const OutletOwner&) = delete;

    /// In the order of the members.
    [[nodiscard]] const std::vector<Outlet>& outlets() const { return outlets_; }

  protected:
    OutletOwner() = default;
    ~OutletOwner() = default;

    /// Registers `member` and returns null, its initial value. `name` must outlive the object.
    template <class Kind>
    [[nodiscard]] Kind* outlet(std::string_view name, Kind*& member) {
        outlets_.push_back({name, [&member](Element* element) {
                                member = dynamic_cast<Kind*>(element);
                                return member != nullptr;
                            }});
        return nullptr;
    }

  private:
    std::vector<Outlet> outlets_;
};

} // namespace platform
