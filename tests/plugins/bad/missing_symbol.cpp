// Calls a function that nobody has.
#include "sound.h"

extern "C" unsigned int functionThatNobodyHas();

unsigned int StartBoard(const char*) { return functionThatNobodyHas(); }
