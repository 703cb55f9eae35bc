// lv2_describe FOLDER: writes what the bundle says of its plug-ins, ports and presets.
#include "BundleWriter.h"

#include <exception>
#include <iostream>

int main(int argc, char** argv) try {
    if (argc != 2) {
        std::cerr << "usage: lv2_describe FOLDER\n";
        return 2;
    }
    qolv2::BundleWriter(argv[1]).Write();
} catch (const std::exception& error) {
    std::cerr << "lv2_describe: " << error.what() << '\n';
    return 1;
}
