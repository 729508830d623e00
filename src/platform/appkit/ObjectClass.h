#pragma once

#include "platform/appkit/Element.h"
#include "platform/appkit/NSApplication.h"
#include "platform/appkit/NSControl.h"
#include "platform/appkit/NSTabView.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSWindow.h"
#include "platform/appkit/OutletOwner.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <type_traits>

namespace platform {

/// What an interface file may use of a class: its actions by name, its outlets, and the delegates it can be.
/// A class is described once (see describeClass) and registered under its name in the current host
/// (registerClass).
struct ObjectClass {
    std::string name;
    std::function<std::shared_ptr<void>()> make; ///< a new object, for files that make their owner
    std::map<std::string, std::function<void(void* object, NSControl* sender)>> actions;
    // Each returns the object as that class, or null when its own class is not derived from it.
    std::function<OutletOwner*(void*)> outletOwner;
    std::function<NSApplicationDelegate*(void*)> applicationDelegate;
    std::function<NSTableViewDataSource*(void*)> tableDataSource;
    std::function<NSTableViewDelegate*(void*)> tableDelegate;
    std::function<NSTabViewDelegate*(void*)> tabViewDelegate;
    std::function<NSTextFieldDelegate*(void*)> textFieldDelegate;
    std::function<NSWindowDelegate*(void*)> windowDelegate;
};

/// Collects the actions of C: describeClass<C>("C").action("y:", &C::y). The outlets need no description,
/// because an object of C knows its own (OutletOwner).
template <class C>
class ClassDescription {
  public:
    explicit ClassDescription(std::string name) {
        class_.name = std::move(name);
        class_.outletOwner = as<OutletOwner>();
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

    ClassDescription& action(std::string name, void (C::*operation)(NSControl* sender)) {
        class_.actions.emplace(std::move(name), [operation](void* object, NSControl* sender) {
            (static_cast<C*>(object)->*operation)(sender);
        });
        return *this;
    }

    [[nodiscard]] ObjectClass take() { return std::move(class_); }

  private:
    template <class Base>
    static std::function<Base*(void*)> as() {
        if constexpr (std::is_base_of_v<Base, C>) {
            return [](void* object) -> Base* { return static_cast<C*>(object); };
        } else {
            return [](void*) -> Base* { return nullptr; };
        }
    }

    ObjectClass class_;
};

template <class C>
[[nodiscard]] ClassDescription<C> describeClass(std::string name) {
    return ClassDescription<C>(std::move(name));
}

/// Makes a class known to the interface loader of the current host; replaces a class of the same name.
void registerClass(ObjectClass description);
/// The class of that name, or null.
[[nodiscard]] const ObjectClass* findClass(const std::string& name);

} // namespace platform
