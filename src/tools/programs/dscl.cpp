#include "tools/DirectoryTools.h"

int main(int argc, char** argv) {
    return directoryToolMain("dscl", argc, argv);
}
