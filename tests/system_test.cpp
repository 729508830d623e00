// Brindle on the computer itself. Each test has a computer of its own, which is gone when it ends.

#include "support/OwnComputer.h"
#include "support/Subprocess.h"

#include <gtest/gtest.h>

#include <string>

namespace {

/// The accounts of the computer that the test has for itself.
class SystemAccounts : public OwnComputer {};

TEST_F(SystemAccounts, AreNotThoseOfTheComputerThatRunsTheTests) {
    const Finished made = runProgram({"/usr/sbin/useradd", "-l", "-M", "-N", "-u", "1501", "scratch"});
    EXPECT_EQ(made.status, 0) << made.errors; // whoever started this looks whether the real ones stay
    EXPECT_NE(contents("/etc/passwd").find("\nscratch:x:1501:"), std::string::npos);
}

} // namespace

int main(int argc, char** argv) {
    return runTestsOnOwnComputer(argc, argv);
}
