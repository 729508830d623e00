#include "platform/samba/SettingsComplaints.h"

#include "platform/posix/LetterCase.h"
#include "platform/samba/InstalledSamba.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <span>

namespace platform {

namespace {

constexpr auto limit = std::chrono::seconds(20);
/// testparm looks names up on the network, and a slow network must not keep a question waiting.
constexpr auto startLimit = std::chrono::seconds(5);
/// Each complaint that ends testparm's reading takes one more run.
constexpr int mostRuns = 25;

/// What a line contains that complains of something that the server cannot use.
constexpr std::array<std::string_view, 8> unusable = {"Unknown parameter encountered",
                                                      "Ignoring invalid value",
                                                      "Ignoring invalid list value",
                                                      "is not boolean",
                                                      "ERROR: ",
                                                      "Invalid ",
                                                      "params.c",
                                                      "Error loading services"};
/// What it contains about something that the server passes over, or changes before it uses it.
constexpr std::array<std::string_view, 6> ineffective = {
    "found in service section", "must differ",    "is too long",
    "Maximum value for",        "is not a valid", "source not found"};

bool hasOneOf(std::string_view line, std::span<const std::string_view> parts) {
    return std::ranges::any_of(
        parts, [line](std::string_view part) { return line.find(part) != std::string_view::npos; });
}

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return lines;
}

/// The name in lower case and without blanks, the way Samba compares names.
std::string folded(std::string_view name) {
    std::string plain = lowercased(name);
    std::erase_if(plain, [](char letter) { return letter == ' ' || letter == '\t' || letter == '\r'; });
    return plain;
}

bool isHeader(std::string_view line) {
    const std::size_t begin = line.find_first_not_of(" \t");
    return begin != std::string_view::npos && line[begin] == '[';
}

bool saysSomething(std::string_view line) {
    const std::size_t begin = line.find_first_not_of(" \t\r");
    return begin != std::string_view::npos && line[begin] != '#' && line[begin] != ';';
}

/// Follows testparm through the lines of the text. testparm reports each setting and section that it reads.
class Reading {
  public:
    Reading(std::vector<std::string>& lines, std::vector<SettingsComplaint>& found)
        : lines_(lines), found_(found) {}

    /// Processes testparm's output. Returns true when it stopped at a line; that line is then emptied, so
    /// that the next run gets further.
    bool follow(std::string_view said) {
        for (const std::string& line : linesOf(said)) {
            constexpr std::string_view setting = "doing parameter ";
            if (line.starts_with(setting)) {
                const std::string key = settingKeyOf(std::string_view(line).substr(setting.size()));
                moveTo([&key](const std::string& each) { return settingKeyOf(each) == key; });
            } else if (line.starts_with("Processing section ")) {
                moveTo(&isHeader);
                header_ = place_;
            } else if (line == "No service name in service entry.") {
                complain(header_, line); // reported only at the end of the section
                place_ = header_;
            } else if (line == "pm_process() returned No") {
                return takeOut();
            } else if (line != "Error loading services." && isSettingsComplaint(line)) {
                complain(place_, line);
            }
        }
        return false;
    }

  private:
    template <class Test>
    void moveTo(Test test) {
        const auto begin = lines_.begin() + static_cast<std::ptrdiff_t>(place_);
        const auto next = std::find_if(begin, lines_.end(), test);
        if (next != lines_.end()) {
            place_ = static_cast<std::size_t>(next - lines_.begin()) + 1;
            hasComplained_ = false;
        }
    }

    void complain(std::size_t line, std::string text) {
        hasComplained_ = true;
        found_.push_back({line, std::move(text)});
    }

    bool takeOut() {
        std::size_t index = place_ - 1; // the line of the complaint
        if (!hasComplained_) {
            // testparm does not name a line that it cannot parse: it is the next one after the last that it
            // reported.
            index = place_;
            while (index < lines_.size() && !saysSomething(lines_[index])) {
                ++index;
            }
            complain(index + 1, "The server does not understand this line and reads no further.");
        }
        if (index >= lines_.size()) {
            return false;
        }
        lines_[index].clear();
        return true;
    }

    std::vector<std::string>& lines_;
    std::vector<SettingsComplaint>& found_;
    std::size_t place_ = 0;  ///< how many lines testparm has read
    std::size_t header_ = 0; ///< the number of the last header among them
    bool hasComplained_ = false;
};

Result<FinishedProcess> runTestparm(std::string_view text, std::chrono::seconds timeLimit,
                                    std::initializer_list<const char*> options) {
    const std::string testparm = sambaCommand("testparm");
    if (testparm.empty()) {
        return Status::failure("cannot check", "smb.conf",
                               "testparm is not installed; install the package samba-common-bin");
    }
    Command command{{testparm, "-s"}, ErrorOutput::Apart, systemEnvironment()};
    command.words.insert(command.words.end(), options.begin(), options.end());
    command.words.emplace_back("/dev/stdin");
    return runProcess(command, text, timeLimit);
}

/// Each run of testparm repeats the complaints of the runs before it.
std::vector<SettingsComplaint> sortedWithoutRepetitions(std::vector<SettingsComplaint> all) {
    std::ranges::stable_sort(all, {}, &SettingsComplaint::line);
    std::vector<SettingsComplaint> found;
    std::size_t ofLine = 0; // where the complaints about the present line begin
    for (SettingsComplaint& each : all) {
        ofLine = found.empty() || found.back().line != each.line ? found.size() : ofLine;
        const auto begin = found.begin() + static_cast<std::ptrdiff_t>(ofLine);
        if (std::find(begin, found.end(), each) == found.end()) {
            found.push_back(std::move(each));
        }
    }
    return found;
}

std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

} // namespace

bool isSettingsComplaint(std::string_view line) {
    return isAboutUnusableSettings(line) || hasOneOf(line, ineffective);
}

bool isAboutUnusableSettings(std::string_view complaint) {
    return hasOneOf(complaint, unusable);
}

std::string settingKeyOf(std::string_view line) {
    const std::size_t end = line.find('=');
    const std::string key = end == std::string_view::npos ? std::string() : folded(line.substr(0, end));
    return key.starts_with('#') || key.starts_with(';') || key.starts_with('[') ? std::string() : key;
}

bool isShareSecurity(std::string_view line) {
    return folded(line) == "security=share";
}

Result<FinishedProcess> runTestparm(std::string_view text, std::chrono::seconds timeLimit) {
    return runTestparm(text, timeLimit, {});
}

Result<std::vector<SettingsComplaint>> settingsComplaints(std::string_view text) {
    std::vector<std::string> lines = linesOf(text);
    for (std::string& line : lines) {
        if (settingKeyOf(line) == "include") {
            line.clear();
        }
    }
    std::vector<SettingsComplaint> found;
    for (int run = 0; run < mostRuns; ++run) {
        const auto finished = runTestparm(joined(lines), limit, {"-d", "4"});
        if (!finished.isOk()) {
            return finished.status();
        }
        if (!Reading(lines, found).follow(finished->errors)) {
            break;
        }
    }
    return sortedWithoutRepetitions(std::move(found));
}

std::string withoutShareSecurity(std::string_view text) {
    std::string kept;
    kept.reserve(text.size());
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        if (!isShareSecurity(text.substr(0, end - (text[end - 1] == '\n' ? 1 : 0)))) {
            kept.append(text.substr(0, end));
        }
        text.remove_prefix(end);
    }
    return kept;
}

bool serverStartsWith(std::string_view text) {
    const auto run = runTestparm(text, startLimit);
    return !run.isOk() || run->errors.find("Error loading services") == std::string::npos;
}

} // namespace platform
