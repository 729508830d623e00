#include "frontends/cli/CommandRun.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/SystemPaths.h"
#include "review/ConnectedClients.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <memory>

#include <arpa/inet.h>

namespace frontend {

namespace {

using platform::Session;
using review::Disconnection;

struct SessionOptions {
    std::optional<std::string> share;
    std::optional<std::string> computer;
};

JSON timeText(std::int64_t time) {
    if (time == 0) {
        return {};
    }
    std::array<char, 32> text{};
    const std::time_t seconds = time;
    std::tm utc{};
    ::gmtime_r(&seconds, &utc);
    std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &utc);
    return text.data();
}

/// Runs in its own event because it may ask for the administrator's permission.
std::vector<Session> sessionsOf(CommandRun& run) {
    std::vector<Session> sessions;
    platform::Status status;
    run.perform([&] {
        auto found = review::connectedClients(run.context().host.root);
        status = found.status();
        sessions = std::move(found).valueOr({});
    });
    if (!status.isOk()) {
        CommandRun::fail(status.text());
    }
    return sessions;
}

void list(CommandRun& run) {
    JSON& list = run.result()["sessions"] = JSON::array();
    for (const Session& each : sessionsOf(run)) {
        JSON session = {{"user", each.user},         {"computer", each.computer},
                        {"address", each.address},   {"process", each.process},
                        {"protocol", each.protocol}, {"since", timeText(each.since())},
                        {"shares", JSON::array()},   {"files", JSON::array()}};
        std::string shares;
        for (const Session::Share& share : each.shares) {
            session["shares"].push_back({{"name", share.name}, {"since", timeText(share.since)}});
            shares += (shares.empty() ? "" : ",") + share.name;
        }
        run.say(each.user + "\t" + each.computer + "\t" + shares + "\t" +
                (each.since() == 0 ? "" : timeText(each.since()).get<std::string>()));
        for (const Session::File& file : each.files) {
            session["files"].push_back(
                {{"path", file.path}, {"since", timeText(file.since)}, {"isWritten", file.isWritten}});
            run.say("    " + file.path);
        }
        list.push_back(std::move(session));
    }
}

bool concerns(const Session& session, const SessionOptions& options) {
    return options.computer ? session.address == *options.computer
                            : std::ranges::any_of(session.shares, [&](const Session::Share& share) {
                                  return isEqualIgnoringCase(share.name, *options.share);
                              });
}

void disconnect(CommandRun& run, const SessionOptions& options) {
    if (options.share.has_value() == options.computer.has_value()) {
        CommandRun::fail(NSLocalizedString("give either --share or --computer"), CommandStatus::WrongUse);
    }
    if (std::ranges::none_of(sessionsOf(run), [&](const Session& each) { return concerns(each, options); })) {
        run.finishUnchanged();
        return;
    }
    const Disconnection kind = options.share ? Disconnection::Share : Disconnection::Computer;
    const std::string what = options.share ? *options.share : *options.computer;
    run.write({platform::systempath::smbcontrol, review::disconnectionWords(kind, what), ""},
              [&] { review::disconnect(kind, what); });
}

} // namespace

void addSessionCommands(CLI::App& parser, CommandOptions& options) {
    CLI::App* const sessions = addCommand(parser, options, "sessions", CommandKind::Reading,
                                          "Say who is connected to the SMB server", list);
    const auto given = std::make_shared<SessionOptions>();
    CLI::App* const command =
        addCommand(*sessions, options, "disconnect", CommandKind::Writing, "End connections",
                   [given](CommandRun& run) { disconnect(run, *given); });
    command->add_option("--share", given->share, "End all connections to this share")->type_name("NAME");
    command
        ->add_option("--computer", given->computer, "End all connections of the computer with this address")
        ->type_name("ADDRESS")
        ->check(CLI::Validator(
            [](std::string& text) {
                in6_addr address{}; // large enough for the other kind, too
                std::array<char, INET6_ADDRSTRLEN> written{};
                for (const int kind : {AF_INET, AF_INET6}) {
                    if (::inet_pton(kind, text.c_str(), &address) == 1) {
                        text = ::inet_ntop(kind, &address, written.data(), written.size()); // as Samba does
                        return std::string();
                    }
                }
                return text + " is not an IP address";
            },
            ""));
    sessions->parse_complete_callback([&options] { options.needsApplication = false; });
    // This runs after the subcommand's callback.
    sessions->final_callback([&options, sessions] {
        if (sessions->get_subcommands().empty()) {
            options.carryOut = list;
        }
    });
}

} // namespace frontend
