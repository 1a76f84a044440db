// The program's arguments and what they make it do.
#pragma once

namespace oam::shadow {

// The exit status: 0 done, 1 not found or unreadable, 2 wrong use. Results go to standard output,
// everything else to standard error.
int execute(int argc, char** argv);

}  // namespace oam::shadow
