// Contents of the shadow that tell whether they are whole: every text and number of a generation is
// made from its number, and so is how many boards it has.
#pragma once

#include <cstdint>
#include <string>

#include "objects/shadow.h"

namespace oam::torture {

using Generation = std::uint64_t;

// The empty table of a new segment.
constexpr Generation kNothing = 0;
// What the others, from 1 to this one, are chosen from; each has as many boards as its number says.
int BoardsOf(Generation generation);

ShadowImage ImageOf(Generation generation);
oam_result Publish(CBoardIDsShadow& shadow, Generation generation);

// What is there. Under the segment's lock; `fault` is told what is half.
Generation Understand(const CBoardIDsShadow::Contents& contents, std::string* fault);
// The same through the lock, and through the functions that any process calls.
Generation Read(CBoardIDsShadow& shadow, std::string* fault);

}  // namespace oam::torture
