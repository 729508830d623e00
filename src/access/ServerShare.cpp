#include "access/ServerShare.h"

#include "model/ServerSettings.h"
#include "platform/foundation/NSString.h"
#include "platform/posix/LetterCase.h"

#include <algorithm>
#include <ranges>

namespace accesscheck {

namespace {

constexpr std::string_view separators = " \t,;\n\r";

bool isMember(const Account& account, const std::string& group, Accounts& accounts) {
    const auto gid = accounts.group(group);
    return gid && std::ranges::find(account.groups, *gid) != account.groups.end();
}

} // namespace

ServerSetting ServerShare::setting(std::string_view key) const {
    for (const auto* places : {&sections_, globals_}) {
        for (const SMBShare* section : std::ranges::reverse_view(*places)) {
            if (const ServerSetting found = serverSetting(*section, key); found.pair != nullptr) {
                return found;
            }
        }
    }
    return {};
}

std::string_view ServerShare::text(std::string_view key) const {
    const ServerSetting found = setting(key);
    return found.pair != nullptr ? found.pair->Value.view() : std::string_view();
}

bool ServerShare::flag(std::string_view key, bool standard) const {
    const ServerSetting found = setting(key);
    const auto value = found.pair != nullptr ? serverBool(found.pair->Value) : std::nullopt;
    return value ? *value != found.inverted : standard;
}

std::vector<std::string> ServerShare::list(std::string_view key) const {
    std::vector<std::string> words;
    std::string word;
    bool isQuoted = false;
    const auto end = [&] {
        if (!word.empty()) {
            words.push_back(word == "%S" ? name_ : word);
            word.clear();
        }
    };
    for (const char character : text(key)) {
        if (character == '"') {
            isQuoted = !isQuoted;
        } else if (!isQuoted && separators.find(character) != std::string_view::npos) {
            end();
        } else {
            word += character;
        }
    }
    end();
    return words;
}

ServerShares::ServerShares(const SMBConf& conf) {
    std::map<std::string, std::vector<const SMBShare*>, std::less<>> sections;
    for (const auto& entry : conf.Entries()) {
        if (entry->Type() != SMBGroup) {
            continue;
        }
        if (isServerGlobal(entry->ShareName())) {
            globals_.push_back(entry.get());
        } else {
            sections[platform::lowercased(entry->ShareName())].push_back(entry.get());
        }
    }
    for (auto& [name, named] : sections) {
        shares_.emplace(name, ServerShare(named.front()->ShareName(), named, &globals_));
    }
}

const ServerShare* ServerShares::find(std::string_view name) const {
    const auto found = shares_.find(platform::lowercased(name));
    return found != shares_.end() ? &found->second : nullptr;
}

bool isNamed(const std::vector<std::string>& list, const Account& account, Accounts& accounts) {
    return std::ranges::any_of(list, [&](const std::string& word) {
        const auto begin = word.find_first_not_of("@+&");
        if (begin == std::string::npos) {
            return false;
        }
        const std::string_view mark = std::string_view(word).substr(0, begin);
        // "DOMAIN\name" can only be a name of this computer, which knows no other domain.
        const auto domain = word.rfind('\\');
        const std::string name = word.substr(domain == std::string::npos ? begin : domain + 1);
        return mark.empty() ? isEqualIgnoringCase(name, account.name)
                            : mark != "&" && isMember(account, name, accounts);
    });
}

} // namespace accesscheck
