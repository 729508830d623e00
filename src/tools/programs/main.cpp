// The one body of the five tools' programs; the build says which of them it is.

#include "tools/DirectoryTools.h"
#include "tools/Helper.h"

int main(int argc, char** argv) {
    constexpr std::string_view tool = BRINDLE_TOOL;
    // Not "?:": what only the helper needs is then linked into the helper only.
    if constexpr (tool == "brindle-helper") {
        return helperMain(argc, argv);
    } else {
        return directoryToolMain(tool, argc, argv);
    }
}
