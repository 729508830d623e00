#include "platform/host/RootContents.h"

#include "platform/netinfo/AccountNumber.h"
#include "platform/netinfo/Store.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <set>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

namespace platform {

namespace {

constexpr const char* smbConfBeforeExample = R"(# The SMB server's settings of this root.
#
# A line that begins with "#" or ";" is a comment.  Settings stand as "name = value" below the name of their
# section.  Brindle writes this file anew when a share or the SMB settings are changed, and keeps the comments.
#
# "map to guest": a user whom the server does not know is a guest, and gets in where guests may.
# "dos charset": old clients name files in this code page.

[global]
  workgroup = WORKGROUP
  server string = Brindle
  security = USER
  map to guest = Bad User
  dos charset = CP437
  unix charset = UTF-8
  load printers = no
  local master = yes
  hide dot files = yes

# Each user's home folder as a share of its own.  The SMB settings turn it on.
;[homes]
;  comment = User Home Directories
;  browseable = no
;  read only = no

# An example to start from: take the ";" away, or make a share of the folder in the Shares tab.
;[Example]
;  path = )";

constexpr const char* smbConfAfterExample = R"(
;  read only = no
;  guest ok = yes
)";

/// Adds records of one kind to the store, each name only once.
class Filler {
  public:
    Filler(Store& store, const char* directory)
        : store_(store), directory_(store.addRecord(Store::root, directory)) {}

    /// Returns none for a name that cannot be a record's, or that has a record already (account sources may
    /// overlap).
    std::optional<Store::Record> add(const std::string& name) {
        if (name.empty() || name.find('/') != std::string::npos || store_.child(directory_, name)) {
            return std::nullopt;
        }
        return store_.addRecord(directory_, name);
    }

    void set(Store::Record record, const char* property, const std::string& value) {
        store_.setValues(record, property, std::span(&value, 1));
    }

  private:
    Store& store_;
    Store::Record directory_;
};

/// Looked up by id, because an account source that serves several computers may not list its users.
std::string currentUser() {
    const passwd* entry = ::getpwuid(::getuid());
    return entry == nullptr ? std::string() : entry->pw_name;
}

void addUser(Filler& users, const passwd& entry) {
    const auto record = users.add(entry.pw_name);
    if (!record) {
        return;
    }
    const std::string_view gecos = entry.pw_gecos == nullptr ? "" : entry.pw_gecos;
    users.set(*record, "realname", std::string(gecos.substr(0, gecos.find(','))));
    users.set(*record, "uid", directoryNumber(entry.pw_uid));
    users.set(*record, "gid", directoryNumber(entry.pw_gid));
    users.set(*record, "home", entry.pw_dir);
    users.set(*record, "shell", entry.pw_shell);
    users.set(*record, "passwd", "*");
}

struct IdRange {
    unsigned first;
    unsigned last;

    [[nodiscard]] bool holds(unsigned id) const { return first <= id && id <= last; }
};

/// The ids that the computer gives to people and their groups (login.defs(5)). `kind` is "UID" or "GID".
IdRange idsOfPeople(std::string_view kind) {
    IdRange range{1000, 60000}; // unless the file says otherwise
    std::ifstream in("/etc/login.defs");
    std::string line;
    while (std::getline(in, line)) {
        std::istringstream words(line);
        std::string name;
        std::string number;
        if (words >> name >> number && name.starts_with(kind) && !number.empty()) {
            const auto id = static_cast<unsigned>(std::strtoul(number.c_str(), nullptr, 0));
            if (name.substr(kind.size()) == "_MIN") {
                range.first = id;
            } else if (name.substr(kind.size()) == "_MAX") {
                range.last = id;
            }
        }
    }
    return range;
}

/// The names of the people who were added, and the ids of their primary groups.
struct People {
    std::set<std::string, std::less<>> names;
    std::set<gid_t> groups;

    void add(Filler& users, const passwd& entry) {
        addUser(users, entry);
        names.emplace(entry.pw_name);
        groups.insert(entry.pw_gid);
    }
};

/// Adds people, root and the current user. Accounts that only run programs do not share folders.
People fillUsers(Store& store) {
    const IdRange ids = idsOfPeople("UID");
    Filler users(store, "users");
    People people;
    ::setpwent();
    while (const passwd* entry = ::getpwent()) {
        if (entry->pw_uid == 0 || ids.holds(entry->pw_uid)) {
            people.add(users, *entry);
        }
    }
    ::endpwent();
    if (const passwd* entry = ::getpwuid(::getuid())) {
        people.add(users, *entry);
    }
    return people;
}

struct GroupEntry {
    std::string name;
    gid_t gid;
    std::vector<std::string> members;
};

std::vector<GroupEntry> computersGroups() {
    std::vector<GroupEntry> groups;
    ::setgrent();
    while (const group* entry = ::getgrent()) {
        groups.push_back({entry->gr_name, entry->gr_gid, {}});
        for (char** member = entry->gr_mem; *member != nullptr; ++member) {
            groups.back().members.emplace_back(*member);
        }
    }
    ::endgrent();
    return groups;
}

void addMember(std::vector<std::string>& members, const std::string& name) {
    if (!name.empty() && std::ranges::find(members, name) == members.end()) {
        members.push_back(name);
    }
}

/// The group admin, whose members are those who may administer the computer. If the computer has no such
/// group, it gets a number that no group there has.
GroupEntry adminGroup(const std::vector<GroupEntry>& groups) {
    GroupEntry admin{"admin", 80, {}};
    while (std::ranges::find(groups, admin.gid, &GroupEntry::gid) != groups.end()) {
        ++admin.gid;
    }
    for (const auto& each : groups) {
        if (each.name == "admin") {
            admin = each;
        }
    }
    for (const auto& each : groups) {
        if (each.name == "sudo" || each.name == "wheel") {
            std::ranges::for_each(each.members, [&](const auto& name) { addMember(admin.members, name); });
        }
    }
    addMember(admin.members, currentUser());
    return admin;
}

/// Adds the groups for people, the groups that people are in, staff, which new users get, and admin.
void fillGroups(Store& store, const People& people) {
    const IdRange ids = idsOfPeople("GID");
    Filler filler(store, "groups");
    auto groups = computersGroups();
    GroupEntry admin = adminGroup(groups);
    const auto place = std::ranges::find(groups, admin.name, &GroupEntry::name);
    const auto isPeoples = [&](const GroupEntry& group) {
        return ids.holds(group.gid) || people.groups.contains(group.gid) || group.name == "staff" ||
               group.name == "admin" || std::ranges::any_of(group.members, [&](const auto& name) {
                   return people.names.contains(name);
               });
    };
    if (place == groups.end()) {
        groups.push_back(std::move(admin));
    } else {
        *place = std::move(admin);
    }
    for (const auto& each : groups) {
        if (const auto record = isPeoples(each) ? filler.add(each.name) : std::nullopt) {
            filler.set(*record, "gid", directoryNumber(each.gid));
            filler.set(*record, "passwd", "*");
            store.setValues(*record, "users", each.members);
        }
    }
}

} // namespace

std::string sampleSmbConf(const std::string& exampleFolder) {
    return smbConfBeforeExample + exampleFolder + smbConfAfterExample;
}

Status makeStore(const std::string& file) {
    Store store(file, Store::Opening::Create);
    fillGroups(store, fillUsers(store));
    store.addRecord(store.addRecord(Store::root, "config"), "Brindle");
    return store.commit();
}

} // namespace platform
