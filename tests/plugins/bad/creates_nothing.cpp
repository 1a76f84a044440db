// Serves a product and cannot create a board of it.
#include "sound.h"

unsigned int CreateBoard(const char*, const char*) { return OAMERR_CREATE_BOARD_FAIL; }
