// The judged module's entries, each with its judge around it.
//
// The service looks a module's entries up with zolGetFunctionAddr, which this program defines: the
// service gets the judges. So every call of the module is watched, the service's and the check's.
#pragma once

#define OAM_TYPES_ONLY
#include <string>

#include "module_kind.h"
#include "oam/plugin.h"

namespace oam::check::judged {

oam_plugin_init Init;
oam_plugin_exit Exit;
oam_plugin_get_text GetText;
oam_plugin_alert_receive AlertReceive;
oam_plugin_detect_boards DetectBoards;
oam_plugin_create_board CreateBoard;
oam_plugin_destroy_board DestroyBoard;
oam_plugin_open_object OpenObject;
oam_plugin_close_object CloseObject;
oam_plugin_set_keyword SetKeyword;
oam_plugin_get_keyword GetKeyword;
oam_plugin_get_qualifier GetQualifier;
oam_plugin_start_board StartBoard;
oam_plugin_stop_board StopBoard;
oam_plugin_test_board TestBoard;
oam_plugin_send_buffer SendBuffer;
oam_plugin_get_board_status GetBoardStatus;

// Whether the module has the entry; known once the service has looked it up.
bool Has(Entry entry);

// A code with the module's name for it, if it has one.
std::string NamedCode(unsigned int code);

// The module's own GetText without its judge, for very many calls.
oam_plugin_get_text* RawGetText();

}  // namespace oam::check::judged
