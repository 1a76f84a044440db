/* The board shadow: a copy of the essentials of the board table in shared memory.
 *
 * The server rewrites it after every change; any process that loads this library may read it, with
 * or without a server. Each function is whole under one lock shared between processes, so a reader
 * sees a change entirely or not at all. The segment holds the first 31 boards in name order.
 *
 * Segment "OAM_BoardIDsShadow", 10,624 bytes: a 32-bit count, so many records, then one byte that
 * tells whether the plug-in "vxplugin.bpi" is loaded in the server. A record is 332 bytes:
 *
 *   offset  bytes  field
 *        0    129  name           at most 128 characters and a NUL
 *      132      4  number
 *      136    129  driverName     at most 128 characters and a NUL
 *      265     65  driverBoardId  at most 64 characters and a NUL
 *      330      1  isALaw         1 when the board uses A-law companding
 *
 * Each reader's first argument is ignored; it keeps the shape of the interface. Results:
 * OAMERR_NOT_ENOUGH_MEMORY before oamShadowInit, for a text whose length is not below its buffer's
 * size, and for a segment that cannot be read; OAMERR_NOT_FOUND when no board matches.
 */
#ifndef OAM_SHADOW_H
#define OAM_SHADOW_H

#include "oam/entry.h"

#ifdef __cplusplus
class CBoardIDsShadow;
extern "C" {
#else
typedef struct CBoardIDsShadow CBoardIDsShadow;
#endif

/* Attaches this process, creating an empty segment when there is none. Calling it again makes a new
 * view and does not release the earlier one. OAMERR_NOT_ENOUGH_MEMORY when there is no room for the
 * segment. */
OAM_API oam_result oamShadowInit(void) OAM_NOEXCEPT;

/* Gives up this process's view; the segment stays. Always 0. */
OAM_API oam_result oamShadowExit(void) OAM_NOEXCEPT;

/* This process's view, null before oamShadowInit. */
OAM_API CBoardIDsShadow* oamShadowGetPtr(void) OAM_NOEXCEPT;

OAM_API oam_result oamShadowBoardEnum(unsigned int, int index, char* name,
                                      unsigned int size) OAM_NOEXCEPT;
OAM_API oam_result oamShadowBoardLookupByNumber(unsigned int, unsigned int number, char* name,
                                                unsigned int size) OAM_NOEXCEPT;
OAM_API oam_result oamShadowBoardLookupByDriverIDs(unsigned int, const char* driverName,
                                                   const char* driverBoardId, char* name,
                                                   unsigned int size) OAM_NOEXCEPT;
OAM_API oam_result oamShadowBoardGetNumber(unsigned int, const char* name,
                                           unsigned int* number) OAM_NOEXCEPT;

/* When only the second text does not fit, the first has been copied already. */
OAM_API oam_result oamShadowBoardGetDriverIDs(unsigned int, const char* name, char* driverName,
                                              unsigned int driverNameSize, char* driverBoardId,
                                              unsigned int driverBoardIdSize) OAM_NOEXCEPT;
OAM_API oam_result oamShadowBoardGetIsUsingVxPlugin(unsigned int, bool* isUsing) OAM_NOEXCEPT;
OAM_API oam_result oamShadowBoardIsUsingALaw(unsigned int, const char* name,
                                             bool* aLaw) OAM_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
