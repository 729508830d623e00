// The main function of all five tools; the build says which one.

#include "tools/DirectoryTools.h"
#include "tools/Helper.h"

int main(int argc, char** argv) {
    constexpr std::string_view tool = BRINDLE_TOOL;
    return tool == "brindle-helper" ? helperMain(argc, argv) : directoryToolMain(tool, argc, argv);
}
