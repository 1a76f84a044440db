// The configuration report: the file that OAMEVN_REPORT alerts are appended to.
#pragma once

#include "oam/codes.h"
#include "oam/message.h"

// Builds the report's path and removes the report of the last run.
oam_result reportInit() noexcept;

// OAMERR_FILE_WRITE_ERROR when opening, writing or closing failed.
oam_result reportAppend(const oam_msg_tag* message) noexcept;
