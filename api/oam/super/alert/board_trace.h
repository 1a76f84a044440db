// The board trace log: which alerts are written, and in what form.
#pragma once

#include "oam/codes.h"
#include "oam/message.h"

// Writes one alert to the open log in board-trace form. The code's name and the board's number are
// looked up before the log's lock is taken: the first asks components and plug-ins, the second
// needs the board table's lock.
// Kept: no result; after a failed write the stream is rewound, so that later lines overwrite the
// file from its start.
void FormatOammonLog(const oam_msg_tag* message) noexcept;

// The plain form, "source(severity letter): text": OAMERR_FILE_WRITE_ERROR when it was not written.
oam_result writePlainLine(const oam_msg_tag* message) noexcept;
