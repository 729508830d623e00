// The one body of the five tools' programs; the build says which of them it is.

#include "tools/DirectoryTools.h"
#include "tools/Helper.h"

int main(int argc, char** argv) {
    constexpr std::string_view tool = BRINDLE_TOOL;
    // With "if constexpr", only the helper links the libraries that only the helper needs.
    if constexpr (tool == "brindle-helper") {
        return helperMain(argc, argv);
    } else {
        return directoryToolMain(tool, argc, argv);
    }
}
