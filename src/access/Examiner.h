#pragma once

#include "access/Doctor.h"
#include "model/SMBConf.h"

#include <initializer_list>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace accesscheck {

/// An examination in progress: what was read of the computer, and what was found. There is one function for
/// each kind of thing to examine.
class Examiner {
  public:
    /// Reads the shares and smb.conf. A directory that cannot be read becomes a finding.
    explicit Examiner(const ExaminedHost& host);
    /// Uses shares and an smb.conf that were read before; `conf` must outlive this object.
    Examiner(const ExaminedHost& host, const SMBConf& conf, std::span<const NormalShare> shares);

    void examineShares();
    void examineAccounts();
    void examineSettings();
    void examineServers();
    void examineOwnFiles();

    [[nodiscard]] Examination take() { return std::move(found_); }

  private:
    struct Share {
        std::string name;
        std::string folder;
        std::string afpShared;
    };

    struct User {
        std::string name;
        std::string uid;
        std::string gid;
        std::string home;
        std::string shell;
        std::string sharedFolder;
    };

    struct Group {
        std::string name;
        std::string gid;
    };

    /// A section that the server treats as a share.
    struct Section {
        std::string name;
        std::string path;
        bool isOffered = true;
    };

    /// The shares and sections, indexed by what they are looked up by.
    struct Known {
        std::set<std::pair<std::string, std::string>> whole; ///< the name and folder of each section
        std::map<std::string, const Section*> byName;
        std::map<std::string, const Section*> byFolder;
        std::set<std::string> shares; ///< the names of the records, in lower case
    };

    void readShares();
    void readAccounts();
    void readSections();
    [[nodiscard]] std::vector<std::vector<std::string>> report(const char* path,
                                                               std::initializer_list<const char*> properties);

    /// `remedy` names another folder for the share.
    void examineFolder(const std::string& share, const std::string& folder, const std::string& where,
                       const std::string& remedy);
    void examineRecord(const Share& share, const Known& known);
    void examineSections();
    void examineNames();
    /// Examines the sections that the server takes for its own, "global" and "homes".
    void examineOwnSections();
    void examineUser(const User& user);
    void examinePasswords();
    /// The user is in Samba's database or ought to be, and cannot log on.
    void findNoLogOn(const User& user, bool isDisabled);
    void examineHalfMade();
    void examineFile(const std::string& path, unsigned forbidden, unsigned owner);

    void find(Finding finding) { found_.findings.push_back(std::move(finding)); }

    /// A command of Brindle's own, made of these words, each quoted where necessary.
    [[nodiscard]] std::string command(std::initializer_list<std::string> words) const;
    /// A command line that sets the passwords of these users, or of as many as a finding names; the next
    /// examination names others.
    [[nodiscard]] std::string passwordCommand(const std::vector<std::string>& users) const;

    /// A command of the directory's own tool, for records that no command of Brindle's lists.
    [[nodiscard]] std::string deleteCommand(const std::string& record) const;
    /// Commands that rename, move and remove a section of smb.conf. They are for cases where Brindle would
    /// change nothing because the records are already right.
    [[nodiscard]] std::string renameCommand(const std::string& section, const std::string& name) const;
    [[nodiscard]] std::string moveCommand(const std::string& section, const std::string& folder) const;
    /// The same with "/FOLDER" for the user to fill in; the second is for a section without a folder.
    [[nodiscard]] std::string movePattern(const std::string& section) const;
    /// The same for a section and the record of its share.
    [[nodiscard]] std::string movePatternOfBoth(const std::string& share) const;
    [[nodiscard]] std::string addPathPattern(const std::string& section) const;
    [[nodiscard]] std::string removeCommand(const std::string& section) const;
    [[nodiscard]] std::string editCommand(const std::string& script) const;

    [[nodiscard]] std::string section(const std::string& name) const;
    [[nodiscard]] bool sharesOverSMB() const;

    const ExaminedHost& host_;
    Examination found_;
    std::optional<SMBConf> own_; ///< none when the caller has read it
    const SMBConf& conf_;
    std::string smbConfFile_;
    bool hasDirectory_ = true;
    std::vector<Section> sections_;
    std::vector<Share> shares_;
    std::vector<User> users_;
    std::vector<Group> groups_;
};

} // namespace accesscheck
