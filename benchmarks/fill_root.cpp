// Makes a root with many shares and users, for benchmarks that run Brindle's own programs.

#include "FilledRoot.h"

#include <exception>
#include <iostream>

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "usage: fill_root FOLDER SHARES USERS\n";
        return 2;
    }
    try {
        fillRoot(argv[1], std::stoi(argv[2]), std::stoi(argv[3]));
    } catch (const std::exception& error) {
        std::cerr << "fill_root: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
