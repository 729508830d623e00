#include "platform/samba/Sessions.h"

#include "platform/posix/Process.h"
#include "platform/posix/UTF8.h"
#include "platform/samba/InstalledSamba.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>
#include <iterator>
#include <map>
#include <regex>
#include <sstream>

#include <arpa/inet.h>

namespace platform {

namespace {

using nlohmann::json;

constexpr auto limit = std::chrono::seconds(15);
constexpr const char* cannotSee = "cannot see who is connected";
constexpr const char* cannotDisconnect = "cannot disconnect";

/// Only the first character decides, because a file name in the tables may hold braces too.
bool isJSON(std::string_view listing) {
    const std::size_t first = listing.find_first_not_of(" \t\r\n");
    return first != std::string_view::npos && listing[first] == '{';
}

/// Runs one of Samba's commands for a root's server, or without `root` for the computer's own.
Result<FinishedProcess> run(const std::optional<SambaAccounts>& root, const std::string& program,
                            const std::vector<std::string>& words) {
    const std::string path = sambaCommand(program);
    if (path.empty()) {
        return Status::failure("cannot run", program, "it is not installed; install the package samba");
    }
    Command command{{path}, ErrorOutput::Apart, systemEnvironment()};
    if (root) {
        command.environment = root->environment();
        command.words.insert(command.words.end(), {"-s", root->configurationFile()});
        for (std::string& option : root->privateOptions()) {
            command.words.push_back(std::move(option));
        }
    }
    command.words.insert(command.words.end(), words.begin(), words.end());
    return runProcess(command, {}, limit);
}

Status control(const std::optional<SambaAccounts>& root, const std::string& on,
               const std::vector<std::string>& words) {
    const auto finished = run(root, "smbcontrol", words);
    if (!finished.isOk()) {
        return finished.status();
    }
    const std::string said = lastLineOf(finished->errors + finished->output);
    return finished->status == 0
               ? Status()
               : Status::failure(cannotDisconnect, on,
                                 said.empty() ? "smbcontrol has failed and gives no reason" : said);
}

/// Reads a time like "2026-11-25T14:32:53.255069+00:00"; 0 for other text.
std::int64_t timeOf(const std::string& text) {
    std::tm time{};
    const char* rest = ::strptime(text.c_str(), "%Y-%m-%dT%H:%M:%S", &time);
    if (rest == nullptr) {
        return 0;
    }
    while (*rest == '.' || (*rest >= '0' && *rest <= '9')) {
        ++rest;
    }
    constexpr std::int64_t minute = 60;
    int hours = 0;
    char colon = 0;
    int minutes = 0;
    if (std::istringstream(rest) >> hours >> colon >> minutes) {
        minutes = hours * 60 + (*rest == '-' ? -minutes : minutes);
    }
    return ::timegm(&time) - minutes * minute;
}

/// Reads a local time like "Wed Nov 25 14:32:53 2026 UTC"; 0 for other text.
std::int64_t localTimeOf(const std::string& text) {
    std::tm time{};
    time.tm_isdst = -1;
    return ::strptime(text.c_str(), "%a %b %d %H:%M:%S %Y", &time) == nullptr ? 0 : std::mktime(&time);
}

/// The address in "ipv4:127.0.0.1:57274" or "ipv6:::1:57274".
std::string addressOf(const std::string& place) {
    const std::size_t begin = place.find(':') + 1;
    const std::size_t end = place.rfind(':');
    return place.starts_with("ipv") && end >= begin ? place.substr(begin, end - begin) : place;
}

/// False for Samba's own IPC$, which every client uses besides the share that it wants.
bool isServed(const std::string& share) {
    return share != "IPC$";
}

std::string textAt(const json& object, const char* key) {
    const auto found = object.find(key);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

pid_t processOf(const json& object) {
    const auto server = object.find("server_id");
    pid_t process = 0;
    if (server != object.end() && server->is_object()) {
        std::istringstream(textAt(*server, "pid")) >> process;
    }
    return process;
}

/// The objects in the object `key` of `document`; empty when there is no such object.
std::vector<json> valuesOf(const json& document, const char* key) {
    std::vector<json> values;
    if (const auto found = document.find(key); found != document.end() && found->is_object()) {
        std::ranges::copy_if(*found, std::back_inserter(values), &json::is_object);
    }
    return values;
}

std::vector<Session> sessionsInJSON(const json& document) {
    std::vector<Session> sessions;
    std::map<std::string, std::size_t> known; // index by session ID
    std::map<std::pair<pid_t, json>, std::size_t> users;
    for (const json& each : valuesOf(document, "sessions")) {
        known.emplace(textAt(each, "session_id"), sessions.size());
        users.emplace(std::pair(processOf(each), each.value("uid", json())), sessions.size());
        sessions.push_back({processOf(each),
                            textAt(each, "username"),
                            textAt(each, "remote_machine"),
                            addressOf(textAt(each, "hostname")),
                            textAt(each, "session_dialect"),
                            {},
                            {}});
    }
    for (const json& each : valuesOf(document, "tcons")) {
        const auto session = known.find(textAt(each, "session_id"));
        if (session != known.end() && isServed(textAt(each, "service"))) {
            sessions[session->second].shares.push_back(
                {textAt(each, "service"), timeOf(textAt(each, "connected_at"))});
        }
    }
    for (const json& file : valuesOf(document, "open_files")) {
        const std::string path = textAt(file, "service_path") + "/" + textAt(file, "filename");
        for (const json& each : valuesOf(file, "opens")) {
            const auto session = users.find(std::pair(processOf(each), each.value("uid", json())));
            if (session != users.end()) {
                const std::string mode = textAt(each.value("access_mask", json::object()), "text");
                sessions[session->second].files.push_back(
                    {path, timeOf(textAt(each, "opened_at")), mode.find('W') != std::string::npos});
            }
        }
    }
    return sessions;
}

/// Reads smbstatus's tables. After the first table they refer to a session only by the process that serves
/// it.
class Tables {
  public:
    void read(const std::string& line) {
        std::smatch part;
        static const std::regex session(R"(^(\d+)\s+(\S+)\s+(\S+)\s+(\S+)\s+\((\S+)\)\s+(\S+).*)");
        static const std::regex share(
            R"(^(\S.*?)\s+(\d+)\s+(\S+)\s+(\w{3} \w{3} [ \d]\d [\d:]{8} (?:AM |PM )?\d{4}.*))");
        static const std::regex file(
            R"(^(\d+)\s+\d+\s+DENY_\S+\s+\S+\s+(\S+)\s+\S+\s+(/.*?)\s{3}(.*?)\s{3}(\w{3} .*))");
        if (std::regex_match(line, part, session)) {
            found_.push_back({processOf(part[1]), part[2], part[4], addressOf(part[5]), part[6], {}, {}});
        } else if (std::regex_match(line, part, file)) {
            if (Session* serving = servedBy(part[1])) {
                serving->files.push_back({part[3].str() + "/" + part[4].str(), localTimeOf(part[5]),
                                          part[2].str().find("WR") != std::string::npos});
            }
        } else if (std::regex_match(line, part, share) && isServed(part[1])) {
            if (Session* serving = servedBy(part[2])) {
                serving->shares.push_back({part[1], localTimeOf(part[4])});
            }
        }
    }

    [[nodiscard]] std::vector<Session> take() { return std::move(found_); }

  private:
    [[nodiscard]] static pid_t processOf(const std::string& number) {
        pid_t process = 0;
        std::istringstream(number) >> process;
        return process;
    }

    [[nodiscard]] Session* servedBy(const std::string& number) {
        const auto session = std::ranges::find(found_, processOf(number), &Session::process);
        return session == found_.end() ? nullptr : &*session;
    }

    std::vector<Session> found_;
};

} // namespace

std::int64_t Session::since() const {
    std::int64_t first = 0;
    for (const Share& share : shares) {
        const bool isKnown = share.since != 0;
        first = isKnown && (first == 0 || share.since < first) ? share.since : first;
    }
    return first;
}

Result<std::string> sessionListing(const std::optional<SambaAccounts>& root) {
    auto finished = run(root, "smbstatus", {"--json"});
    if (finished.isOk() && !isJSON(finished->output)) {
        finished = run(root, "smbstatus", {}); // an older smbstatus
    }
    if (!finished.isOk()) {
        return finished.status();
    }
    if (finished->errors.find("only works as root") != std::string::npos) {
        return Status::failure(cannotSee, {}, "Samba tells this only to root");
    }
    if (finished->status != 0) {
        const std::string said = lastLineOf(finished->errors);
        return Status::failure(cannotSee, {},
                               said.empty() ? "smbstatus has failed and gives no reason" : said);
    }
    return finished->output;
}

Result<std::vector<Session>> sessionsIn(std::string_view listing) {
    if (isJSON(listing)) {
        const std::string text = utf8::replace_invalid(listing); // a file name may not be valid UTF-8
        const json document = json::parse(text, nullptr, false);
        return document.is_object()
                   ? Result(sessionsInJSON(document))
                   : Status::failure(cannotSee, {}, "the output of smbstatus cannot be read");
    }
    Tables tables;
    std::istringstream lines{std::string(listing)};
    for (std::string line; std::getline(lines, line);) {
        tables.read(line);
    }
    return tables.take();
}

Status closeShare(const std::optional<SambaAccounts>& root, const std::string& share) {
    const auto isControl = [](unsigned char letter) { return letter < ' '; };
    // "*" would mean all shares.
    if (share.empty() || share == "*" || share.starts_with('-') || std::ranges::any_of(share, isControl)) {
        return Status::failure(cannotDisconnect, share, "is not a share's name");
    }
    return control(root, share, {"smbd", "close-share", share});
}

Status disconnectComputer(const std::optional<SambaAccounts>& root, const std::string& address) {
    std::array<unsigned char, sizeof(in6_addr)> bytes{};
    if (::inet_pton(AF_INET, address.c_str(), bytes.data()) != 1 &&
        ::inet_pton(AF_INET6, address.c_str(), bytes.data()) != 1) {
        return Status::failure(cannotDisconnect, address, "is not an IP address");
    }
    return control(root, address, {"smbd", "kill-client-ip", address});
}

} // namespace platform
