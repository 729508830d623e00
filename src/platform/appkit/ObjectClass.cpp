#include "platform/appkit/ObjectClass.h"

#include "platform/foundation/Host.h"

#include <map>
#include <utility>

namespace platform {

namespace {

/// The classes that the current host's loader knows.
struct ClassRegistry {
    std::map<std::string, ObjectClass> classes;
};

ClassRegistry& registry() {
    return Host::current().sharedInstance<ClassRegistry>();
}

} // namespace

void registerClass(ObjectClass description) {
    std::string name = description.name;
    registry().classes.insert_or_assign(std::move(name), std::move(description));
}

const ObjectClass* findClass(const std::string& name) {
    const auto& classes = registry().classes;
    const auto found = classes.find(name);
    return found == classes.end() ? nullptr : &found->second;
}

} // namespace platform
