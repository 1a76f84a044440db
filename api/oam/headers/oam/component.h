/* What an extended management component (a shared object "*.emc" in "/lib/") exports: nine entries,
 * all of them required. A component serves one object, named by its file, and receives every alert.
 *
 * Components are loaded before the board plug-ins and told apart from them by the file's extension
 * alone. Results, locks (M), exceptions and texts are as oam/plugin.h says. Entries marked M are
 * called under the manager lock; GetText and AlertReceive may come from several threads, alerts one
 * at a time.
 */
#ifndef OAM_COMPONENT_H
#define OAM_COMPONENT_H

#include "oam/entry.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Once, after loading and after the component's object exists. A failure stops the start. */
typedef unsigned int oam_component_init(const char* fileName);
typedef unsigned int oam_component_exit(void);

/* A component is asked before any plug-in. */
typedef const char* oam_component_get_text(unsigned int code);
typedef unsigned int oam_component_alert_receive(const oam_msg_tag* message);

/* M. The component's object is opened with the mode, read, changed and closed by this handle. */
typedef unsigned int oam_component_open_object(unsigned long handle, unsigned int mode);
typedef unsigned int oam_component_close_object(unsigned long handle);
typedef unsigned int oam_component_set_keyword(unsigned long handle, const char* keyword,
                                               const char* value);
typedef unsigned int oam_component_get_keyword(unsigned long handle, const char* keyword,
                                               char* buffer, unsigned int size);
typedef unsigned int oam_component_get_qualifier(unsigned long handle, const char* keyword,
                                                 const char* qualifier, char* buffer,
                                                 unsigned int size);

#ifndef OAM_TYPES_ONLY
#define OAM_ENTRY __attribute__((visibility("default")))
OAM_ENTRY oam_component_init Init;
OAM_ENTRY oam_component_exit Exit;
OAM_ENTRY oam_component_get_text GetText;
OAM_ENTRY oam_component_alert_receive AlertReceive;
OAM_ENTRY oam_component_open_object OpenObject;
OAM_ENTRY oam_component_close_object CloseObject;
OAM_ENTRY oam_component_set_keyword SetKeyword;
OAM_ENTRY oam_component_get_keyword GetKeyword;
OAM_ENTRY oam_component_get_qualifier GetQualifier;
#endif

#ifdef __cplusplus
}
#endif

#endif
