// Command lines with one argument per line. Each is accepted, or ends the program with a text; none throws.

#include "Fuzz.h"
#include "frontends/Options.h"
#include "platform/foundation/NSString.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto arguments = componentsSeparatedByString(fuzz::textOf(data, size), "\n");
    const frontend::Options options = frontend::parseOptions(arguments);
    if (options.end) {
        fuzz::require(!options.end->text.empty(), "the program says why it ends");
        fuzz::require(options.end->status == 0 ||
                          options.end->status == platform::CommandLineEnd::wrongOptions,
                      "it ends well, or with wrong options");
        return 0;
    }
    using frontend::Mode;
    fuzz::require((options.mode == Mode::Command) == static_cast<bool>(options.command.carryOut) &&
                      (options.mode == Mode::Script) == !options.script.empty() &&
                      (options.mode == Mode::Print) == !options.table.empty() &&
                      (options.mode == Mode::Snapshot) == !options.snapshotFolder.empty(),
                  "what the program is run for has what it needs");
    fuzz::require(!options.port || (options.serve && *options.port > 0 && *options.port <= 65535),
                  "a port is a server's");
    return 0;
}
