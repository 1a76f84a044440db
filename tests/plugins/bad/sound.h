// For a plug-in that is sound but for one entry: the kit's template with that entry renamed to
// Sound<Entry> (see CMakeLists.txt), which the faulty one in its place can still call.
#pragma once

#include "oam/plugin.h"

#undef Init
#undef Exit
#undef GetText
#undef CreateBoard
#undef OpenObject
#undef CloseObject
#undef SetKeyword
#undef GetKeyword
#undef StartBoard
#undef StopBoard
#undef TestBoard
#undef SendBuffer

extern "C" {
OAM_ENTRY oam_plugin_init Init;
OAM_ENTRY oam_plugin_exit Exit;
OAM_ENTRY oam_plugin_get_text GetText;
OAM_ENTRY oam_plugin_create_board CreateBoard;
OAM_ENTRY oam_plugin_open_object OpenObject;
OAM_ENTRY oam_plugin_close_object CloseObject;
OAM_ENTRY oam_plugin_set_keyword SetKeyword;
OAM_ENTRY oam_plugin_get_keyword GetKeyword;
OAM_ENTRY oam_plugin_start_board StartBoard;
OAM_ENTRY oam_plugin_stop_board StopBoard;
OAM_ENTRY oam_plugin_test_board TestBoard;
}

// Stores more in a new board: keywords and "keyword?qualifier"s.
template <unsigned int kCount>
unsigned int store(const char* board, const char* const (&rows)[kCount][2]) {
    unsigned long handle = 0;
    unsigned int failed = _oamDbOpenObject(board, &handle, OAM_OPEN_WRITE | OAM_OPEN_PROVIDER);
    if (failed) return failed;
    for (const auto& row : rows)
        if (!failed) failed = _oamDbSetKeyword(handle, row[0], row[1]);
    const unsigned int closed = _oamDbCloseObject(handle);
    return failed ? failed : closed;
}
