#include "workbench/commands/CommandLine.h"

int main(int argc, char** argv) {
    return workbench::RunCommandLine(argc, argv);
}
