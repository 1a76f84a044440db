// oam, the operator's tool.
#include "command_line.h"

int main(int argc, char** argv) { return oam::CommandLine().Execute(argc, argv); }
