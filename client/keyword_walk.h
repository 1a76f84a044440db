// All keywords of an object: those it has stored, and those it computes.
//
// Computed keywords are found the way the object tells of them: qualifier "Keywords.Count" and
// "Keywords[i]" of the empty name give its own, of a structure ("Type" is "Struct") its members;
// an array ("Type" is "Array") has "<name>.Count" elements. An object without such qualifiers has
// its stored keywords only.
#pragma once

#include <string>
#include <vector>

namespace oam {

class OpenedObject;

// Without qualifiers, sorted without regard to case, each once.
std::vector<std::string> AllKeywords(const OpenedObject& object);

}  // namespace oam
