#include "frontends/NSApplicationMain.h"

int main(int argc, char** argv) {
    return NSApplicationMain(argc, argv);
}
