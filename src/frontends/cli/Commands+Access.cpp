#include "access/AccessCheck.h"
#include "access/ServerAccounts.h"
#include "frontends/cli/CommandRun.h"
#include "model/SMBConf.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"

#include <array>
#include <memory>

namespace frontend {

namespace {

using accesscheck::Permissions;

struct AccessOptions {
    std::string share;
    std::optional<std::string> user;
    bool isGuest = false;
};

struct Permission {
    const char* name;
    bool Permissions::*member;
};

constexpr std::array<Permission, 6> permissions{{{"connect", &Permissions::connect},
                                                 {"list", &Permissions::list},
                                                 {"read", &Permissions::read},
                                                 {"write", &Permissions::write},
                                                 {"create", &Permissions::create},
                                                 {"delete", &Permissions::remove}}};

void checkAccess(CommandRun& run, const AccessOptions& options) {
    const bool isGuest = options.isGuest;
    if (isGuest == options.user.has_value()) {
        CommandRun::fail(NSLocalizedString("give either a user or --guest"), CommandStatus::WrongUse);
    }
    const SMBConf conf;
    const auto& root = run.context().host.root;
    accesscheck::ServerAccounts accounts(root ? std::optional<platform::SambaAccounts>(*root) : std::nullopt);
    accesscheck::AccessCheck check(conf, accounts, accesscheck::serverWith(conf, root.has_value()));
    const accesscheck::Answer answer = check.check(options.share, options.user);

    JSON& result = run.result();
    result["share"] = answer.share;
    result["user"] = answer.user ? JSON(*answer.user) : JSON();
    std::string allowed;
    for (const Permission& permission : permissions) {
        const bool may = answer.may.*permission.member;
        result["may"][permission.name] = may;
        allowed += may ? (allowed.empty() ? "" : ", ") + std::string(permission.name) : "";
    }
    result["reason"] = JSON();
    run.say(stringWithFormat(NSLocalizedString("%@ may: %@"),
                             answer.user ? *answer.user : NSLocalizedString("the guest"),
                             allowed.empty() ? NSLocalizedString("nothing") : allowed));
    if (answer.reason) {
        const accesscheck::Reason& reason = *answer.reason;
        result["reason"] = {
            {"code", reason.code}, {"text", reason.text}, {"where", reason.where}, {"remedy", reason.remedy}};
        run.say(stringWithFormat(NSLocalizedString("Why not more: %@ (%@)"), reason.text, reason.where));
        if (!reason.remedy.empty()) {
            run.say(stringWithFormat(NSLocalizedString("What would help: %@"), reason.remedy));
        }
    }
    result["notes"] = answer.notes;
    for (const std::string& note : answer.notes) {
        run.say(note);
    }
}

} // namespace

void addAccessCommands(CLI::App& parser, CommandOptions& options) {
    const auto given = std::make_shared<AccessOptions>();
    CLI::App* const command =
        addCommand(parser, options, "check-access", CommandKind::Reading,
                   "Say what a user may do with a share over SMB, and what stands in the way",
                   [given](CommandRun& run) { checkAccess(run, *given); });
    command->add_option("SHARE", given->share, "The share's name")->required();
    CLI::Option* const user = command->add_option("USER", given->user, "The user's name");
    command->add_flag("--guest", given->isGuest, "Check for a guest, who connects without a name")
        ->excludes(user);
    command->parse_complete_callback([&options] { options.needsApplication = false; });
}

} // namespace frontend
