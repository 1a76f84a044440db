// The service's own entry points, for the check itself.
//
// The program defines functions of the same names (service_calls.cpp), which the judged module is
// bound to; so the real ones are looked up behind them.
#pragma once

#include "oam/entry.h"

#define CHECK_SERVICE_FUNCTIONS(X)                                                                 \
    X(Init)                                                                                        \
    X(Exit)                                                                                        \
    X(Restart)                                                                                     \
    X(AlertRegisterCallback)                                                                       \
    X(AlertNotify)                                                                                 \
    X(OpenObject)                                                                                  \
    X(CloseObject) X(CloseObject_WOAN) X(SetKeyword) X(GetKeyword) X(GetQualifier) X(DbOpenObject) \
        X(DbCloseObject) X(DbGetProviderMode) X(DbSetProviderMode) X(DbSetKeyword) X(DbGetKeyword) \
            X(DbRemoveKeyword) X(DbSetQualifier) X(DbGetQualifier) X(DbRemoveQualifier)            \
                X(DbEnumObjects) X(DbEnumKeywords) X(ConfigExport) X(ConfigImport) X(CreateBoard)  \
                    X(DeleteBoard) X(AddDetectedBoard) X(StartBoard) X(StopBoard) X(TestBoard)     \
                        X(BoardEnum) X(SendBuffer) X(BoardGetStatus) X(DetectBoards)

namespace oam::check {

struct ServiceFunctions {
#define CHECK_MEMBER(name) decltype(&::_oam##name) name;
    CHECK_SERVICE_FUNCTIONS(CHECK_MEMBER)
#undef CHECK_MEMBER
};

const ServiceFunctions& Service();

}  // namespace oam::check
