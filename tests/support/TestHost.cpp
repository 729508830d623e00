#include "support/TestHost.h"

#include "support/TestHostServices.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

#include <unistd.h>

namespace fs = std::filesystem;
using namespace testhost;

namespace {

std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\') {
            result += '\\';
        }
        result += character == '\n' ? std::string("\\n") : std::string(1, character);
    }
    return result + '"';
}

void writeFile(const fs::path& file, std::string_view bytes) {
    fs::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!stream.flush()) {
        throw std::runtime_error("cannot write " + file.string());
    }
}

/// Returns the project's own resources, or a folder in `root` with the test's string table (and, if the test
/// wants them, all other resources of the project).
fs::path resourcesFor(const TestHost::Options& options, const fs::path& root) {
    const fs::path project = BRINDLE_TEST_RESOURCES;
    if (options.realResources && options.strings.empty()) {
        return project;
    }
    const fs::path folder = root / "resources";
    fs::create_directories(folder);
    if (!options.realResources) {
        writeFile(folder / "Info.plist", "<plist version=\"1.0\"><dict/></plist>\n");
    } else {
        for (const auto& entry : fs::directory_iterator(project)) {
            if (entry.is_regular_file()) {
                fs::copy_file(entry.path(), folder / entry.path().filename());
            }
        }
    }
    std::string table;
    for (const auto& [key, value] : options.strings) {
        table += quoted(key) + " = " + quoted(value) + ";\n";
    }
    writeFile(folder / "English.lproj" / "Localizable.strings", table);
    return folder;
}

fs::path makeTemporaryFolder() {
    std::string name = (fs::temp_directory_path() / "brindle-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), "cannot make " + name);
    }
    return name;
}

} // namespace

std::string RecordedRun::text() const {
    std::string result = tool;
    for (const auto& argument : arguments) {
        result += ' ' + argument;
    }
    return result;
}

struct TestHost::Implementation {
    explicit Implementation(TestHost& owner) : state(owner) {}

    [[nodiscard]] platform::Services services(const Options& options) {
        platform::Services services;
        services.log = std::make_shared<CapturedLog>(state);
        services.clock = std::make_shared<SetClock>(state);
        services.paths = std::make_shared<RootedPaths>(state);
        services.accountNames = std::make_shared<MachineNames>();
        services.processes = std::make_shared<ToldProcesses>(state);
        services.localDomain = std::make_shared<RootedDomain>(state);
        services.authority = std::make_shared<RecordingAuthority>(state);
        services.presenter = std::make_shared<RecordingPresenter>(state);
        services.systemVersion = options.systemVersion;
        services.languages = options.languages;
        services.keepsLayout = options.keepsLayout;
        return services;
    }

    State state;
    std::optional<platform::Host> host;
};

TestHost::TestHost() : TestHost(Options{}) {}

TestHost::TestHost(Options options) : implementation_(std::make_unique<Implementation>(*this)) {
    State& state = implementation_->state;
    state.root = makeTemporaryFolder();
    for (const char* folder : {"home", "etc", "Library/Preferences"}) {
        fs::create_directories(state.root / folder);
    }
    state.resources = resourcesFor(options, state.root);
    implementation_->host.emplace(implementation_->services(options));
}

TestHost::~TestHost() {
    const State& state = implementation_->state;
    implementation_->host.reset();
    for (const auto& answer : state.answers) {
        ADD_FAILURE() << "no alert \"" << answer.title << "\" came for the answer \"" << answer.button << '"';
    }
    for (const auto& chosen : state.paths) {
        ADD_FAILURE() << "no open panel came for " << chosen.path.value_or("a cancellation");
    }
    std::error_code ignored; // a folder that cannot be removed does not harm other tests
    fs::remove_all(state.root, ignored);
}

fs::path TestHost::root() const {
    return implementation_->state.root;
}

fs::path TestHost::home() const {
    return root() / "home";
}

fs::path TestHost::storeFile() const {
    return root() / "directory.db";
}

void TestHost::write(const std::string& relativePath, std::string_view bytes) {
    writeFile(root() / relativePath, bytes);
}

std::string TestHost::read(const std::string& relativePath) const {
    std::ifstream stream(root() / relativePath, std::ios::binary);
    if (!stream) {
        throw std::runtime_error("cannot read " + (root() / relativePath).string());
    }
    return {std::istreambuf_iterator<char>(stream), {}};
}

void TestHost::answerAlert(const std::string& title, const std::string& button) {
    implementation_->state.answers.push_back({title, button});
}

void TestHost::choosePath(std::optional<std::string> path) {
    implementation_->state.paths.push_back({std::move(path)});
}

void TestHost::allowUnaskedAlerts() {
    implementation_->state.mayAnswerUnasked = true;
}

void TestHost::fireTimers() {
    auto& timers = implementation_->state.timers;
    const auto due = timers; // a timer may stop itself or another one, or start one that is not due yet
    for (const auto& timer : due) {
        if (std::ranges::find(timers, timer.id, &RunningTimer::id) != timers.end()) {
            timer.fire();
        }
    }
}

std::size_t TestHost::runningTimers() const {
    return implementation_->state.timers.size();
}

std::vector<std::string> TestHost::runTexts() const {
    std::vector<std::string> texts;
    std::ranges::transform(runs, std::back_inserter(texts), &RecordedRun::text);
    return texts;
}

platform::Host& TestHost::host() {
    return *implementation_->host;
}
