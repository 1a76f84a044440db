#include "base/flags.h"

std::atomic<bool> g_bAutoStartEnabled{false};
std::atomic<bool> g_bAutoStopEnabled{false};
std::atomic<bool> g_bSynchronizeEnabled{false};
std::atomic<bool> g_bOammonLog{false};
