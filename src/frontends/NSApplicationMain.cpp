#include "NSApplicationMain.h"

int NSApplicationMain(int, char**) { return 1; }
