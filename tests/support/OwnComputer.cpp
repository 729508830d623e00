#include "support/OwnComputer.h"

#include "platform/posix/InputOutput.h"
#include "platform/posix/Process.h"
#include "support/Subprocess.h"

#include <cstdlib>
#include <filesystem>
#include <vector>

#include <unistd.h>

namespace {

const std::string ownComputer = BRINDLE_OWN_COMPUTER;

/// Returns why the tests are skipped; empty when they run on a computer of their own.
std::string& missing() {
    static std::string reason = "support/own-computer has not started this";
    return reason;
}

/// Starts this program again, inside. Returns only when that fails.
void enter(int argc, char** argv) {
    std::vector<std::string> words = {ownComputer, std::filesystem::read_symlink("/proc/self/exe")};
    words.insert(words.end(), argv + 1, argv + argc);
    ::execv(ownComputer.c_str(), platform::nullTerminated(words).data());
    missing() = "there is no program " + ownComputer;
}

} // namespace

int runTestsOnOwnComputer(int argc, char** argv) {
    std::vector<char*> given(argv, argv + argc); // GoogleTest removes its own options from argv
    testing::InitGoogleTest(&argc, argv);
    if (std::getenv("BRINDLE_OWN_COMPUTER") != nullptr) {
        missing().clear();
    } else if (!GTEST_FLAG_GET(list_tests)) {
        const Finished check = runProgram({ownComputer, "--check"});
        missing() = platform::lastLineOf(check.errors);
        if (check.status == 0) {
            enter(static_cast<int>(given.size()), given.data());
        }
    }
    return RUN_ALL_TESTS();
}

void OwnComputer::SetUp() {
    if (!missing().empty()) {
        GTEST_SKIP() << missing();
    }
}

std::string OwnComputer::contents(const std::string& file) {
    return platform::readWholeFile(file).valueOr({});
}
