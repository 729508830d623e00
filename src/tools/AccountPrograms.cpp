#include "tools/AccountPrograms.h"

#include "platform/posix/Process.h"

#include <unistd.h>

namespace tools {

using platform::Status;

Status runAccountProgram(const std::vector<std::string>& words, std::string_view input) {
    const std::string& program = words.front();
    if (::access(program.c_str(), X_OK) != 0) {
        return Status::failure("cannot run", program, "it is not installed; install the package passwd");
    }
    // No time limit: if the program were stopped half way, one of the files could be changed and another not.
    const auto finished = platform::runProcess({words, platform::ErrorOutput::WithOutput}, input);
    if (!finished.isOk()) {
        return finished.status();
    }
    if (finished->status == 0) {
        return {};
    }
    const std::string said = platform::lastLineOf(finished->output);
    return Status::failure("cannot change the computer's accounts", "",
                           said.empty() ? program + " gave no reason" : said);
}

} // namespace tools
