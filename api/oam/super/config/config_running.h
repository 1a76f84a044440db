// The flag that opens and closes the _oamDb entry points.
#pragma once

void setConfigRunning(bool running) noexcept;
