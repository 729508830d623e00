#include "review/SettingChanges.h"

#include "platform/foundation/NSDictionary.h"

#include <map>
#include <utility>

namespace review {

namespace {

std::vector<std::pair<std::string, std::string>> settingsIn(const std::string& bytes) {
    const auto dictionary = NSMutableDictionary::dictionaryWithData(bytes);
    return dictionary ? dictionary->values() : std::vector<std::pair<std::string, std::string>>();
}

} // namespace

std::vector<SettingChange> settingChanges(const std::string& before, const std::string& after) {
    std::vector<SettingChange> changes;
    if (before == after) {
        return changes;
    }
    const auto valuesBefore = settingsIn(before);
    const auto valuesAfter = settingsIn(after);
    const std::map<std::string, std::string> known(valuesBefore.begin(), valuesBefore.end());
    const std::map<std::string, std::string> kept(valuesAfter.begin(), valuesAfter.end());
    for (const auto& [key, value] : valuesAfter) {
        const auto found = known.find(key);
        if (found == known.end() || found->second != value) {
            changes.push_back({key, found == known.end() ? "" : found->second, value});
        }
    }
    for (const auto& [key, value] : valuesBefore) {
        if (!kept.contains(key)) {
            changes.push_back({key, value, ""});
        }
    }
    return changes;
}

} // namespace review
