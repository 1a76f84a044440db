// oam-shadow, a look at the board shadow from outside the server.
#include "command_line.h"

int main(int argc, char** argv) { return oam::shadow::execute(argc, argv); }
