#pragma once

#include "platform/appkit/Element.h"
#include "platform/appkit/NSApplication.h"
#include "platform/appkit/NSControl.h"
#include "platform/appkit/NSTabView.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSWindow.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <type_traits>

namespace platform {

/// What an interface file may bind of a class: its outlets and actions by name, and the delegates it can be.
/// A class is described once (see describeClass) and registered under its name in the current host
/// (registerClass).
struct ObjectClass {
    std::string name;
    std::function<std::shared_ptr<void>()> make; ///< a new object, for files that make their owner
    /// Sets an outlet; answers false when the element is of another kind than the outlet.
    std::map<std::string, std::function<bool(void* object, Element* element)>> outlets;
    std::map<std::string, std::function<void(void* object, NSControl* sender)>> actions;
    // The object as a delegate, null where its class is no such delegate.
    std::function<NSApplicationDelegate*(void*)> applicationDelegate;
    std::function<NSTableViewDataSource*(void*)> tableDataSource;
    std::function<NSTableViewDelegate*(void*)> tableDelegate;
    std::function<NSTabViewDelegate*(void*)> tabViewDelegate;
    std::function<NSTextFieldDelegate*(void*)> textFieldDelegate;
    std::function<NSWindowDelegate*(void*)> windowDelegate;
};

/// Collects the outlets and actions of C: describeClass<C>("C").outlet("x", &C::x).action("y:", &C::y).
template <class C>
class ClassDescription {
  public:
    explicit ClassDescription(std::string name) {
        class_.name = std::move(name);
        class_.applicationDelegate = as<NSApplicationDelegate>();
        class_.tableDataSource = as<NSTableViewDataSource>();
        class_.tableDelegate = as<NSTableViewDelegate>();
        class_.tabViewDelegate = as<NSTabViewDelegate>();
        class_.textFieldDelegate = as<NSTextFieldDelegate>();
        class_.windowDelegate = as<NSWindowDelegate>();
    }

    ClassDescription& maker(std::function<std::shared_ptr<C>()> make) {
        class_.make = [make = std::move(make)] { return std::shared_ptr<void>(make()); };
        return *this;
    }

    /// `member` may belong to a base of C.
    template <class Base, class Kind>
    ClassDescription& outlet(std::string name, Kind* Base::*member) {
        static_assert(std::is_base_of_v<Base, C>);
        class_.outlets.emplace(std::move(name), [member](void* object, Element* element) {
            auto* kind = dynamic_cast<Kind*>(element);
            static_cast<Base*>(static_cast<C*>(object))->*member = kind;
            return kind != nullptr;
        });
        return *this;
    }

    ClassDescription& action(std::string name, void (C::*operation)(NSControl* sender)) {
        class_.actions.emplace(std::move(name), [operation](void* object, NSControl* sender) {
            (static_cast<C*>(object)->*operation)(sender);
        });
        return *this;
    }

    [[nodiscard]] ObjectClass take() { return std::move(class_); }

  private:
    template <class Delegate>
    static std::function<Delegate*(void*)> as() {
        if constexpr (std::is_base_of_v<Delegate, C>) {
            return [](void* object) -> Delegate* { return static_cast<C*>(object); };
        } else {
            return [](void*) -> Delegate* { return nullptr; };
        }
    }

    ObjectClass class_;
};

template <class C>
[[nodiscard]] ClassDescription<C> describeClass(std::string name) {
    return ClassDescription<C>(std::move(name));
}

/// Makes a class known to the loader of the current host; a class of the same name is replaced.
void registerClass(ObjectClass description);
/// The class of that name, or null.
[[nodiscard]] const ObjectClass* findClass(const std::string& name);

} // namespace platform
