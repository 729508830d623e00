#include "platform/samba/ServerState.h"

#include "platform/posix/InputOutput.h"
#include "platform/posix/ProcessTable.h"
#include "platform/posix/WholeNumber.h"
#include "platform/samba/InstalledSamba.h"
#include "platform/samba/SambaAccounts.h"
#include "platform/samba/ServerProcesses.h"
#include "platform/samba/SettingsComplaints.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <optional>
#include <sstream>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <unistd.h>

namespace platform {

namespace {

constexpr std::string_view listening = "0A"; // the kernel's number for that state
constexpr std::size_t wordDigits = 8;

std::optional<std::uint32_t> hexNumber(std::string_view digits) {
    return wholeNumber<std::uint32_t>(digits, 16);
}

/// Reads an address as the kernel writes it, as words of 32 bits in host byte order. "*" is every address;
/// empty when it cannot be read.
std::string addressOf(std::string_view digits) {
    std::array<std::uint32_t, 4> words{};
    const std::size_t count = digits.size() / wordDigits;
    if (count * wordDigits != digits.size() || (count != 1 && count != words.size())) {
        return {};
    }
    for (std::size_t index = 0; index < count; ++index) {
        words[index] = hexNumber(digits.substr(index * wordDigits, wordDigits)).value_or(0);
    }
    if (std::ranges::all_of(words, [](std::uint32_t word) { return word == 0; })) {
        return "*";
    }
    std::array<char, INET6_ADDRSTRLEN> text{};
    const bool isShort = count == 1;
    ::inet_ntop(isShort ? AF_INET : AF_INET6, words.data(), text.data(), text.size());
    return isShort ? std::string(text.data()) : "[" + std::string(text.data()) + "]";
}

/// When a process was started, in seconds since 1970; 0 when that is not known.
std::int64_t startOf(pid_t process) {
    const std::string status = kernelText("/proc/" + std::to_string(process) + "/stat");
    const std::string computer = kernelText("/proc/stat");
    const std::size_t name = status.rfind(')'); // the program's name may itself hold a ')'
    const std::size_t boot = computer.find("\nbtime ");
    if (name == std::string::npos || boot == std::string::npos) {
        return 0;
    }
    std::istringstream fields(status.substr(name + 1));
    constexpr int fieldsBefore = 19; // between the name and the time
    std::string field;
    for (int index = 0; index < fieldsBefore; ++index) {
        fields >> field;
    }
    std::int64_t ticks = 0;
    std::int64_t bootTime = 0;
    std::istringstream(computer.substr(boot + std::strlen("\nbtime "))) >> bootTime;
    return fields >> ticks ? bootTime + ticks / ::sysconf(_SC_CLK_TCK) : 0;
}

/// The ports that smb.conf makes smbd listen on. A file that it includes is not read.
std::vector<unsigned> portsIn(std::string_view smbConf) {
    std::vector<unsigned> ports;
    std::istringstream settings{std::string(smbConf)};
    for (std::string line; std::getline(settings, line);) {
        if (settingKeyOf(line) == "smbports") {
            std::ranges::replace(line, ',', ' ');
            std::istringstream numbers(line.substr(line.find('=') + 1));
            ports.assign(std::istream_iterator<unsigned>(numbers), {});
        }
    }
    return ports.empty() ? std::vector<unsigned>(standardPorts.begin(), standardPorts.end()) : ports;
}

} // namespace

std::vector<std::string> listeningPlaces(std::string_view table, std::span<const unsigned> ports) {
    std::vector<std::string> places;
    std::istringstream lines{std::string(table)};
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string number;
        std::string local;
        std::string remote;
        std::string state;
        words >> number >> local >> remote >> state;
        const std::size_t colon = local.find(':');
        if (state != listening || colon == std::string::npos) {
            continue;
        }
        const auto port = hexNumber(std::string_view(local).substr(colon + 1)).value_or(0);
        const std::string address = addressOf(std::string_view(local).substr(0, colon));
        std::string place = address + ":" + std::to_string(port);
        if (!address.empty() && std::ranges::find(ports, port) != ports.end() &&
            std::ranges::find(places, place) == places.end()) {
            places.push_back(std::move(place));
        }
    }
    return places;
}

std::vector<std::string> listeningPlaces(std::span<const unsigned> ports) {
    std::vector<std::string> places;
    for (const char* table : {"/proc/net/tcp", "/proc/net/tcp6"}) {
        for (std::string& place : listeningPlaces(kernelText(table), ports)) {
            if (std::ranges::find(places, place) == places.end()) {
                places.push_back(std::move(place));
            }
        }
    }
    return places;
}

ServerState smbServerState() {
    ServerState state;
    std::istringstream(kernelText(sambaBuild().pidFolder + "/smbd.pid")) >> state.process;
    if (state.process <= 0 || !isComputersServer(state.process)) {
        state.process = 0;
        return state;
    }
    state.since = startOf(state.process);
    state.listensAt = listeningPlaces(portsIn(readWholeFile(sambaBuild().configFile).valueOr("")));
    return state;
}

ServerState rootServerState(const SambaPaths& paths) {
    constexpr std::string_view option = "--option=smb ports=";
    const std::string file = SambaAccounts(paths).configurationFile();
    ServerState state;
    for (const pid_t process : processIds()) {
        const std::vector<std::string> words = commandLineOf(process);
        const auto port =
            std::ranges::find_if(words, [&](const std::string& word) { return word.starts_with(option); });
        if (port == words.end() || !isServerWith(process, file)) {
            continue;
        }
        unsigned number = 0;
        std::istringstream(port->substr(option.size())) >> number;
        state.process = process;
        state.since = startOf(process);
        state.listensAt = listeningPlaces(std::array{number});
        break;
    }
    return state;
}

} // namespace platform
