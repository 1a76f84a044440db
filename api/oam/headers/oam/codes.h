/* Result and event codes.
 *
 * Every entry point returns one of these, 0 for success; every alert carries one as its event code.
 * A plug-in or component may return and raise codes of its own, outside the table; _oamGetText asks
 * it for their names.
 */
#ifndef OAM_CODES_H
#define OAM_CODES_H

#define OAM_CODE(name, value) name = value,

#ifdef __cplusplus
enum [[nodiscard]] oam_result : unsigned int {
    OAM_SUCCESS = 0,
#include "oam/codes.def"
};
#else
typedef unsigned int oam_result;
enum {
    OAM_SUCCESS = 0,
#include "oam/codes.def"
};
#endif

#undef OAM_CODE

#endif
