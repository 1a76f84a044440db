// Needs a library that the loader does not find.
#include "sound.h"

extern "C" unsigned int functionOfGoneLibrary();

unsigned int StartBoard(const char*) { return functionOfGoneLibrary(); }
