// The main function of all five tools; the build says which one.

#include "tools/DirectoryTools.h"
#include "tools/Helper.h"

int main(int argc, char** argv) {
    constexpr std::string_view tool = BRINDLE_TOOL;
    // "if constexpr", so that what only the helper needs is linked only into the helper.
    if constexpr (tool == "brindle-helper") {
        return tools::helperMain(argc, argv);
    } else {
        return tools::directoryToolMain(tool, argc, argv);
    }
}
