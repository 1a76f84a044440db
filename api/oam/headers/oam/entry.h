/* The entry points of liboamsuper.so, one section a purpose.
 *
 * Results are codes of oam/codes.h, 0 for success. What every entry point shares:
 *
 *  - Texts are NUL-terminated. A text result is copied only when its length is below `size`, else
 *    nothing is copied and the result is OAMERR_NOT_ENOUGH_MEMORY. A null buffer asks only whether
 *    the value exists. Outputs stay untouched on failure unless said otherwise.
 *  - Names are compared without regard to (ASCII) case; the spelling first stored is kept.
 *  - Any thread may call any entry point, except that _oamInit, _oamExit, _oamRestart and
 *    _oamShutdown run alone. Called from inside an entry of a plug-in or component, or from the
 *    callback, they are refused with OAMERR_ACCESS_DENIED when the thread holds the manager lock or
 *    is in one of the four already.
 *  - Before _oamInit succeeded (and after _oamExit) all but the lifecycle, text and alert
 *    registration calls return OAMERR_SERVER_NOT_RUNNING.
 *  - A handle names one opening of one object. Kept: it is not checked; passing one that was never
 *    issued or is closed already is the caller's fault.
 *
 * "manager lock" and "table lock" below are the service's two long-lived locks; ARCHITECTURE.md has
 * the order. Both are re-entrant for their thread.
 */
#ifndef OAM_ENTRY_H
#define OAM_ENTRY_H

#include <stdbool.h>

#include "oam/codes.h"
#include "oam/message.h"

#if defined(OAM_BUILDING_SUPER)
#define OAM_API __attribute__((visibility("default")))
#else
#define OAM_API
#endif

#ifdef __cplusplus
#define OAM_NOEXCEPT noexcept
extern "C" {
#else
#define OAM_NOEXCEPT
#endif

/* The client value of the service's own requests. It is never registered and never cleaned up. */
#define OAM_INTERNAL_CLIENT 0xFFFFFFFFul

/* Open modes; 1 and 2 combine. Read-write is exclusive: it needs the object closed, and keeps
 * everyone else out. A provider may also create and remove keywords and qualifiers. */
enum { OAM_OPEN_READ = 0, OAM_OPEN_WRITE = 1, OAM_OPEN_PROVIDER = 2 };

/* Flags of _oamStartBoard and _oamStopBoard. */
enum { OAM_AUTOMATIC = 1, OAM_SYNCHRONIZED = 2 };

/* One MAC address text as _oamBoardSetMACAddress takes it: 128 characters and a NUL. */
enum { OAM_MAC_TEXT_SIZE = 129, OAM_MAC_KEPT = 4 };

/* ---- Lifecycle ----------------------------------------------------------------------------- */

/* One byte, true between a successful _oamInit and the start of _oamExit. */
OAM_API extern bool g_bOamIsRunning;

/* Does nothing but show that the library is loaded and callable. */
OAM_API void _oamHello(const char* text) OAM_NOEXCEPT;

/* Starts everything, in this order: start-up log, alerts, configuration database, components, board
 * plug-ins. 0 also when already running; else the failing stage's code, with all stages undone.
 * OAMERR_NOT_ENOUGH_MEMORY when the installation directory's path is too long (128 characters with
 * "/oam/log/startup.log"). */
OAM_API oam_result _oamInit(void) OAM_NOEXCEPT;

/* Stops everything in reverse order; boards marked for it are stopped first. 0 (unless refused, see
 * above), also when nothing runs. */
OAM_API oam_result _oamExit(void) OAM_NOEXCEPT;

/* _oamExit, then _oamInit; the result of the latter. */
OAM_API oam_result _oamRestart(void) OAM_NOEXCEPT;

/* The same as _oamExit. */
OAM_API oam_result _oamShutdown(void) OAM_NOEXCEPT;

/* 0 while running. Registers nothing: alerts need _oamAlertRegister. */
OAM_API oam_result _oamClientInit(unsigned long client) OAM_NOEXCEPT;

/* Ends the client's alert registration and closes (commits) the handles that it left open. */
OAM_API oam_result _oamClientExit(unsigned long client) OAM_NOEXCEPT;

/* The name of a code: the service's own table first, then the components, then the plug-ins; null
 * when nobody knows it. The text is static; it is not freed. */
OAM_API const char* _oamGetText(unsigned int code) OAM_NOEXCEPT;

/* A printf-style debug sink; it writes nothing. */
OAM_API void DebugOutput(const char* format, ...) OAM_NOEXCEPT
#ifdef __GNUC__
    __attribute__((format(printf, 1, 2)))
#endif
    ;

/* ---- Alerts -------------------------------------------------------------------------------- */

/* Receives every alert: once for the server itself (client 0xFFFFFFFF), then once per registered
 * client in ascending order. Called on the thread that raised the alert, concurrently for
 * concurrent alerts. No lock of the alert system is held, but an alert that the service raises
 * while it commits or stops boards arrives with the manager or table lock held: do not wait in here
 * for another thread that calls the service. A non-zero result stops nothing and becomes the
 * alert's result. */
typedef unsigned int (*oam_alert_callback)(unsigned long client, const oam_msg_tag* message);

/* Installs, replaces or (null) removes the callback. It outlives _oamExit. Always 0. */
OAM_API oam_result _oamAlertRegisterCallback(oam_alert_callback callback) OAM_NOEXCEPT;

/* OAMERR_NOT_FOUND before a callback is installed, OAMERR_ALREADY_EXISTS,
 * OAMERR_NOT_ENOUGH_MEMORY. Works while the service is stopped; _oamExit ends all registrations. */
OAM_API oam_result _oamAlertRegister(unsigned long client) OAM_NOEXCEPT;

/* OAMERR_NOT_FOUND for a client that is not registered. */
OAM_API oam_result _oamAlertUnregister(unsigned long client) OAM_NOEXCEPT;

/* Raises a finished record; it stays the caller's. Delivered to the open log, components, plug-ins,
 * callback, in this order; an OAMEVN_REPORT goes to the file "/oam/log/oam.rpt" alone.
 * The last failure of a receiver; OAMERR_FILE_WRITE_ERROR when log or report could not be written;
 * OAMERR_SERVER_NOT_RUNNING when alerts do not run (the log line is written even then);
 * OAMERR_ACCESS_DENIED when a receiver's own alerts nest more than 32 deep. */
OAM_API oam_result _oamAlertNotify(const oam_msg_tag* message) OAM_NOEXCEPT;

/* ---- Objects ------------------------------------------------------------------------------- */

/* Opens an object by name for a client; mode as OAM_OPEN_...; *handle is set on success.
 * OAMERR_NOT_FOUND; OAMERR_ACCESS_DENIED when open modes exclude each other (client 0xFFFFFFFF
 * waits and tries 10 times more, one second apart; any other client is told at once);
 * OAMERR_FILE_READ_ERROR for a spoiled data file; what the plug-in's OpenObject answers. */
OAM_API oam_result _oamOpenObject(unsigned long client, const char* name, unsigned long* handle,
                                  unsigned int mode) OAM_NOEXCEPT;

/* Closes a handle. A read-write handle is committed first: validated (OAMERR_ALREADY_EXISTS for a
 * taken name or board number, OAMERR_NOT_FOUND without a "Name"), saved (OAMERR_FILE_WRITE_ERROR,
 * also for a name with a backslash) and applied; then OAMEVN_MODIFIED is raised. A refused change is
 * dropped; the handle is closed in every case but one: OAMERR_ACCESS_DENIED inside an entry that was
 * given this handle.
 * Kept: names and values are written as they are. With '<' or '>', white space at an end, 2,048
 * characters, or (a name) '?', '!' or '/' in front, the file cannot be read again and the next start
 * sets it aside. */
OAM_API oam_result _oamCloseObject(unsigned long handle) OAM_NOEXCEPT;

/* The same without OAMEVN_MODIFIED. */
OAM_API oam_result _oamCloseObject_WOAN(unsigned long handle) OAM_NOEXCEPT;

/* Changes a keyword through its object, so a board's plug-in sees and may refuse it.
 * OAMERR_ACCESS_DENIED: not a read-write handle, a new keyword without provider mode, or refused by
 * the Supervisor; the plain number 7: a board name that is empty, begins or ends with a blank, or
 * contains '<', '>' or a backslash; otherwise the plug-in's code. */
OAM_API oam_result _oamSetKeyword(unsigned long handle, const char* name,
                                  const char* value) OAM_NOEXCEPT;

/* OAMERR_NOT_FOUND, OAMERR_NOT_ENOUGH_MEMORY, or the plug-in's code. */
OAM_API oam_result _oamGetKeyword(unsigned long handle, const char* name, char* buffer,
                                  unsigned int size) OAM_NOEXCEPT;

/* As _oamGetKeyword for one qualifier of a keyword. Eight qualifiers have a default when none is
 * stored: Base 10, Choices.Count 0, Description (empty), Keywords.Count 0, Max 32767, Min 0,
 * ReadOnly No, Type String. */
OAM_API oam_result _oamGetQualifier(unsigned long handle, const char* keyword,
                                    const char* qualifier, char* buffer,
                                    unsigned int size) OAM_NOEXCEPT;

/* ---- Database: what plug-ins and components use; no plug-in is called in between ------------ */

/* As _oamOpenObject for the internal client, without the object's own OpenObject. */
OAM_API oam_result _oamDbOpenObject(const char* name, unsigned long* handle,
                                    unsigned int mode) OAM_NOEXCEPT;
OAM_API oam_result _oamDbCloseObject(unsigned long handle) OAM_NOEXCEPT;
OAM_API oam_result _oamDbGetProviderMode(unsigned long handle, bool* provider) OAM_NOEXCEPT;

/* Switches provider mode of an open handle, so that a plug-in may create its keywords while a
 * client only changes values. */
OAM_API oam_result _oamDbSetProviderMode(unsigned long handle, bool provider) OAM_NOEXCEPT;

/* OAMERR_ALREADY_EXISTS for a "Name" or a board "Number" that another has; OAMERR_ACCESS_DENIED
 * without read-write mode, and for a new keyword without provider mode. */
OAM_API oam_result _oamDbSetKeyword(unsigned long handle, const char* name,
                                    const char* value) OAM_NOEXCEPT;
OAM_API oam_result _oamDbGetKeyword(unsigned long handle, const char* name, char* buffer,
                                    unsigned int size) OAM_NOEXCEPT;

/* These three need read-write and provider mode, else OAMERR_ACCESS_DENIED. */
OAM_API oam_result _oamDbRemoveKeyword(unsigned long handle, const char* name) OAM_NOEXCEPT;
OAM_API oam_result _oamDbSetQualifier(unsigned long handle, const char* keyword,
                                      const char* qualifier, const char* value) OAM_NOEXCEPT;
OAM_API oam_result _oamDbRemoveQualifier(unsigned long handle, const char* keyword,
                                         const char* qualifier) OAM_NOEXCEPT;

/* The stored qualifier only, without defaults. */
OAM_API oam_result _oamDbGetQualifier(unsigned long handle, const char* keyword,
                                      const char* qualifier, char* buffer,
                                      unsigned int size) OAM_NOEXCEPT;

/* Object names by position, from 0, sorted without regard to case; OAMERR_NOT_FOUND at the end. */
OAM_API oam_result _oamDbEnumObjects(int index, char* buffer, unsigned int size) OAM_NOEXCEPT;

/* The same over one open object's entries: keywords, and qualifiers as "keyword?qualifier". */
OAM_API oam_result _oamDbEnumKeywords(unsigned long handle, int index, char* buffer,
                                      unsigned int size) OAM_NOEXCEPT;

/* ---- Configuration ------------------------------------------------------------------------- */

/* Writes every object to one file, but one whose creation is under way; the file appears whole or
 * not at all.
 * OAMERR_FILE_WRITE_ERROR; OAMERR_ACCESS_DENIED while an object is open read-write. */
OAM_API oam_result _oamConfigExport(const char* fileName) OAM_NOEXCEPT;

/* Replaces the whole configuration by the file's. Boards are stopped and plug-ins reloaded.
 * OAMERR_ACCESS_DENIED while any object is open, and within an operation that holds the manager lock
 * (to a receiver of its alerts, to a plug-in's entry); OAMERR_NOT_FOUND when the file cannot be
 * opened, OAMERR_FILE_WRITE_ERROR when the old data files could not be set aside: nothing has changed.
 * Any later failure (OAMERR_FILE_READ_ERROR for a malformed file, ...) leaves an empty
 * configuration, and the old data files in "/oam/cfg/import-refused". A process that dies in
 * between comes back with the old configuration. */
OAM_API oam_result _oamConfigImport(const char* fileName) OAM_NOEXCEPT;

/* Creates a board object of a product under a new name, "<product> <n>", returned in the buffer
 * (at least the product's length + 13, else OAMERR_NOT_ENOUGH_MEMORY).
 * OAMERR_NOT_FOUND for an unknown product; what the plug-in's CreateBoard answers.
 * Kept: OAMEVN_CREATED is raised whatever the result, and a failure after the plug-in has created
 * the board leaves the table lock held until this thread next enters the service, or ends. */
OAM_API oam_result _oamCreateBoard(const char* product, char* nameBuffer,
                                   unsigned int size) OAM_NOEXCEPT;

/* Deletes one object, or every board when name is null. OAMERR_NOT_FOUND; OAMERR_ACCESS_DENIED
 * while it is open, inside its own DestroyBoard, or when a plug-in makes a new board for each that
 * is deleted; what the plug-in's DestroyBoard answers (but its OAMERR_NOT_FOUND is success). */
OAM_API oam_result _oamDeleteBoard(const char* name) OAM_NOEXCEPT;

/* Creates the board objects of one detected board, or (null or empty name) of all of them.
 * OAMERR_NOT_FOUND when nothing such was detected, OAMERR_ALREADY_EXISTS when its name or its bus
 * and slot are taken. For all of them: 0 when at least one was added. */
OAM_API oam_result _oamAddDetectedBoard(const char* name) OAM_NOEXCEPT;

/* ---- Board operations ---------------------------------------------------------------------- */

/* Accepts the request and returns; the outcome is an alert with the board's name as its source:
 * OAMEVN_STARTBOARD_DONE, OAMEVN_STOPBOARD_DONE, OAMEVN_TESTBOARD_DONE, severity 0 or 2. A null
 * name means every board. With OAM_SYNCHRONIZED, or the Supervisor's "SynchronizeEnabled", the work
 * is done before the call returns; OAM_AUTOMATIC leaves out boards that are not marked for it.
 * OAMERR_SERVER_NOT_RUNNING, OAMERR_NOT_FOUND, OAMERR_NOT_ENOUGH_MEMORY,
 * OAMERR_CANT_CREATE_THREAD. */
OAM_API oam_result _oamStartBoard(const char* name, unsigned int flags) OAM_NOEXCEPT;
OAM_API oam_result _oamStopBoard(const char* name, unsigned int flags) OAM_NOEXCEPT;

/* The test value goes to the plug-in as it is. Never synchronized. */
OAM_API oam_result _oamTestBoard(const char* name, unsigned int testValue) OAM_NOEXCEPT;

/* ---- Board queries: OAMERR_NOT_FOUND when no board matches --------------------------------- */

OAM_API oam_result _oamBoardEnum(int index, char* buffer, unsigned int size) OAM_NOEXCEPT;
OAM_API oam_result _oamBoardLookupByNumber(unsigned int number, char* buffer,
                                           unsigned int size) OAM_NOEXCEPT;
OAM_API oam_result _oamBoardLookupByDriverIDs(const char* driverName, const char* driverBoardId,
                                              char* buffer, unsigned int size) OAM_NOEXCEPT;
OAM_API oam_result _oamBoardLookupByBusSlot(unsigned int bus, unsigned int slot, char* buffer,
                                            unsigned int size) OAM_NOEXCEPT;
OAM_API oam_result _oamBoardLookupByShelfSlot(unsigned int shelf, unsigned int slot, char* buffer,
                                              unsigned int size) OAM_NOEXCEPT;
OAM_API oam_result _oamBoardLookupByIOAddress(unsigned int address, char* buffer,
                                              unsigned int size) OAM_NOEXCEPT;
OAM_API oam_result _oamBoardLookupBySerialNumber(const char* serialNumber, char* buffer,
                                                 unsigned int size) OAM_NOEXCEPT;

/* The first board of the product, in name order. */
OAM_API oam_result _oamBoardLookupByProduct(const char* product, char* buffer,
                                            unsigned int size) OAM_NOEXCEPT;
OAM_API oam_result _oamBoardLookupByMACAddress(const char* macAddress, char* buffer,
                                               unsigned int size) OAM_NOEXCEPT;

OAM_API oam_result _oamBoardGetNumber(const char* name, unsigned int* number) OAM_NOEXCEPT;

/* Two texts: the driver's name, then the board's identifier within the driver. When only the second
 * does not fit, the first has been copied already. */
OAM_API oam_result _oamBoardGetDriverIDs(const char* name, char* driverName,
                                         unsigned int driverNameSize, char* driverBoardId,
                                         unsigned int driverBoardIdSize) OAM_NOEXCEPT;
OAM_API oam_result _oamBoardGetBusSlot(const char* name, unsigned int* bus,
                                       unsigned int* slot) OAM_NOEXCEPT;

/* 32 and 32 for a board that has no "Location.CPCI" keywords. */
OAM_API oam_result _oamBoardGetShelfSlot(const char* name, unsigned int* shelf,
                                         unsigned int* slot) OAM_NOEXCEPT;

/* Kept: the three setters change the table in memory only, neither the database nor the shadow. */
OAM_API oam_result _oamBoardSetShelfSlot(const char* name, unsigned int shelf,
                                         unsigned int slot) OAM_NOEXCEPT;
OAM_API oam_result _oamBoardResetMACAddressCount(const char* name) OAM_NOEXCEPT;

/* `texts` is `count` slots of OAM_MAC_TEXT_SIZE bytes; the first OAM_MAC_KEPT are kept. */
OAM_API oam_result _oamBoardSetMACAddress(const char* name, const char (*texts)[OAM_MAC_TEXT_SIZE],
                                          unsigned int count) OAM_NOEXCEPT;

/* An index at or above the board's count gives an empty text. */
OAM_API oam_result _oamBoardGetMACAddress(const char* name, char* buffer, unsigned int size,
                                          unsigned int index) OAM_NOEXCEPT;
OAM_API oam_result _oamBoardGetIOAddress(const char* name, unsigned int* address) OAM_NOEXCEPT;
OAM_API oam_result _oamBoardGetSerialNumber(const char* name, char* buffer,
                                            unsigned int size) OAM_NOEXCEPT;
OAM_API oam_result _oamBoardGetProduct(const char* name, char* buffer,
                                       unsigned int size) OAM_NOEXCEPT;

/* 1 when both the board's keyword and the Supervisor's setting say so, else 0. */
OAM_API oam_result _oamBoardGetAutoStartEnabled(const char* name, unsigned int* on) OAM_NOEXCEPT;
OAM_API oam_result _oamBoardGetAutoStopEnabled(const char* name, unsigned int* on) OAM_NOEXCEPT;

/* Passed on to the board's plug-in, with no lock held; the plug-in's code. `selector` and `status`
 * mean what the plug-in says. */
OAM_API oam_result _oamSendBuffer(const char* name, const void* buffer,
                                  unsigned int length) OAM_NOEXCEPT;
OAM_API oam_result _oamBoardGetStatus(const char* name, unsigned int selector,
                                      int* status) OAM_NOEXCEPT;

/* Asks every plug-in what is in the chassis; read the answer as the Supervisor's "DetectedBoards"
 * keywords. The code of a plug-in's object that could not be opened or closed. */
OAM_API oam_result _oamDetectBoards(void) OAM_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
