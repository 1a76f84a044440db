// What the arguments of random calls are made of: names, keywords and values, most of them good.
#pragma once

#include <string>

#include "random.h"

namespace oam::torture {

// The modules of the installation, by the names of their files and objects.
constexpr const char* kSupervisor = "Supervisor";
constexpr const char* kSim = "sim.bpi";
constexpr const char* kWatch = "watch.emc";
constexpr const char* kEcho = "echo.bpi";
constexpr const char* kEar = "ear.emc";  // an echo too; its data file needs another name

// A board that may be there, or (rarely) cannot be.
std::string AnyBoard(Random& random);
std::string AnyProduct(Random& random);
// A board, a module, the Supervisor, or nothing that there is.
std::string AnyObject(Random& random);
std::string AnyKeyword(Random& random, const std::string& object);
std::string AnyQualifier(Random& random);

bool IsBoard(const std::string& object);

struct KeywordValue {
    std::string keyword;
    std::string value;
};
// A change as a client makes it, through the object's own rules.
KeywordValue AnyChange(Random& random, const std::string& object);
// A change past the rules: keywords of our own, and what the service itself watches over.
KeywordValue AnyStoredChange(Random& random, const std::string& object);

// The size of a buffer for a text: mostly enough.
unsigned AnySize(Random& random);

}  // namespace oam::torture
