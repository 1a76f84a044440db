// What the echo modules do when they are called: call back.
//
// Nothing of theirs is locked and nothing is ever destroyed, so they may be called on any thread
// and while the process ends.
#pragma once

#include "oam/message.h"

namespace oam::echo {

// The only product of the plug-in, and the code of the modules' own alerts.
constexpr const char* kProduct = "ECHO";
constexpr unsigned kEchoed = 0x50020001;
// What a receiver answers now and then.
constexpr unsigned kUnwell = 0x50020002;

// The module's file, which names its object; from Init on.
void SetName(const char* fileName);
const char* Name();

// One of several things that a receiver may do: ask for the board that the alert is about, read its
// own object, list the objects, or raise an alert of its own.
unsigned HearAndAnswer(const oam_msg_tag* message);

// Raises an alert as one of this source.
void Raise(unsigned code, const char* source, const char* text);

}  // namespace oam::echo
