#include "tools/Helper.h"

int main(int argc, char** argv) {
    return helperMain(argc, argv);
}
