/* What a board plug-in (a shared object "*.bpi" in the installation's "/lib/") exports.
 *
 * Life cycle: at start-up the service loads every plug-in, creates an object named by its file, and
 * calls Init; then it reads that object's "Products.Count" and "Products[i]" through OpenObject and
 * GetKeyword. Boards of those products are created, opened, changed, started, stopped, tested and
 * destroyed through the entries below. Exit is called at shut-down; the file stays mapped.
 * _oamConfigImport runs Exit and Init again.
 *
 * All results are 0 or a failure code, the service's or the plug-in's own (see GetText).
 *
 *  - M marks an entry that runs with the manager lock held: it may call every _oamDb function and
 *    the board queries, but it must not wait for another thread that calls the service.
 *  - Entries without M run with no lock held, on any thread, several at once, and may take as long
 *    as they need. (A synchronized start or stop of all boards, and the stop of all boards at
 *    shut-down, holds both locks around StartBoard and StopBoard.)
 *  - An exception that leaves an entry is a failure of that entry, OAM_REASON_FAILED.
 *  - What an entry asks of the service may call an entry again, on the same thread. That ends at a
 *    depth of 64, and after 1,024 entries inside an entry inside an entry: then none is called, and
 *    its result is OAMERR_ACCESS_DENIED (GetText: no text).
 *
 * An object handle passed to an entry is good for the _oamDb functions until CloseObject returns.
 * It is lent: a close inside an entry that was given it is refused with OAMERR_ACCESS_DENIED.
 * Texts passed in are valid during the call; texts are answered by the rule of oam/entry.h.
 */
#ifndef OAM_PLUGIN_H
#define OAM_PLUGIN_H

#include "oam/entry.h"

#ifdef __cplusplus
extern "C" {
#endif

/* M in an import. Once, after loading; `fileName` is the plug-in's file name
 * without directory, also its object's name. A failure stops the service's start. */
typedef unsigned int oam_plugin_init(const char* fileName);

/* Once for each Init, and after a failed Init of this or another plug-in. The result is not used.
 */
typedef unsigned int oam_plugin_exit(void);

/* Optional. The name of one of the plug-in's own codes, a static text; null for every other code.
 */
typedef const char* oam_plugin_get_text(unsigned int code);

/* Optional. Every alert but reports, one at a time, on the thread that raised it or on one that is
 * just delivering another; the record is valid during the call. */
typedef unsigned int oam_plugin_alert_receive(const oam_msg_tag* message);

/* Look at the chassis now. The service then reads "DetectedBoards.Count" and, for each i,
 * "DetectedBoards[i].Name", ".Product", ".Location.PCI.Bus" and ".Location.PCI.Slot" of the
 * plug-in's own object. The result is not used. */
typedef unsigned int oam_plugin_detect_boards(void);

/* M. A board object was made, with "Name" and "Product" stored: add the board's own keywords
 * (_oamDbOpenObject with mode 3, _oamDbSetKeyword, _oamDbSetQualifier, _oamDbCloseObject). A
 * failure undoes the creation. */
typedef unsigned int oam_plugin_create_board(const char* boardName, const char* productName);

/* M, and the table lock. The board is about to be deleted. A failure other than OAMERR_NOT_FOUND
 * keeps it. */
typedef unsigned int oam_plugin_destroy_board(const char* boardName);

/* M. One of the plug-in's boards, or its own object, was opened; mode as OAM_OPEN_.... A failure
 * refuses the opening. */
typedef unsigned int oam_plugin_open_object(unsigned long handle, unsigned int mode);

/* M. The handle is about to be closed. A failure drops the changes made through it. */
typedef unsigned int oam_plugin_close_object(unsigned long handle);

/* M. Check the value and store it with _oamDbSetKeyword, or refuse it with a code. */
typedef unsigned int oam_plugin_set_keyword(unsigned long handle, const char* keyword,
                                            const char* value);

/* M. Answer a keyword, usually with _oamDbGetKeyword. `buffer` may be null: an existence test. */
typedef unsigned int oam_plugin_get_keyword(unsigned long handle, const char* keyword, char* buffer,
                                            unsigned int size);

/* M. The same for a qualifier; OAMERR_NOT_FOUND lets the service answer its default. */
typedef unsigned int oam_plugin_get_qualifier(unsigned long handle, const char* keyword,
                                              const char* qualifier, char* buffer,
                                              unsigned int size);

/* On a worker thread. The result becomes the alert OAMEVN_STARTBOARD_DONE and so on; one operation
 * a board at a time. */
typedef unsigned int oam_plugin_start_board(const char* boardName);
typedef unsigned int oam_plugin_stop_board(const char* boardName);
typedef unsigned int oam_plugin_test_board(const char* boardName, unsigned int testValue);

/* On the caller's thread. */
typedef unsigned int oam_plugin_send_buffer(const char* boardName, const void* buffer,
                                            unsigned int length);

/* Optional; a plug-in without it answers OAMERR_NOT_SUPPORTED_WARNING. */
typedef unsigned int oam_plugin_get_board_status(const char* boardName, unsigned int selector,
                                                 int* status);

/* The names are general words, so a plug-in must export them and nothing else, and be linked with
 * -Bsymbolic: its own copy of a function must never be bound to the host's. */
#ifndef OAM_TYPES_ONLY
#define OAM_ENTRY __attribute__((visibility("default")))
OAM_ENTRY oam_plugin_init Init;
OAM_ENTRY oam_plugin_exit Exit;
OAM_ENTRY oam_plugin_get_text GetText;
OAM_ENTRY oam_plugin_alert_receive AlertReceive;
OAM_ENTRY oam_plugin_detect_boards DetectBoards;
OAM_ENTRY oam_plugin_create_board CreateBoard;
OAM_ENTRY oam_plugin_destroy_board DestroyBoard;
OAM_ENTRY oam_plugin_open_object OpenObject;
OAM_ENTRY oam_plugin_close_object CloseObject;
OAM_ENTRY oam_plugin_set_keyword SetKeyword;
OAM_ENTRY oam_plugin_get_keyword GetKeyword;
OAM_ENTRY oam_plugin_get_qualifier GetQualifier;
OAM_ENTRY oam_plugin_start_board StartBoard;
OAM_ENTRY oam_plugin_stop_board StopBoard;
OAM_ENTRY oam_plugin_test_board TestBoard;
OAM_ENTRY oam_plugin_send_buffer SendBuffer;
OAM_ENTRY oam_plugin_get_board_status GetBoardStatus;
#endif

#ifdef __cplusplus
}
#endif

#endif
