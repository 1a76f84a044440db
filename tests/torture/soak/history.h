// What may be there after a death, from what was there before it and what the clients told.
//
// The steps are gone through in their order. One that was acknowledged has happened in every
// configuration that may be; one that was under way has happened in some and not in others. What a
// client read on the way rules out those in which it could not have been read.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "configuration.h"
#include "oracle.h"

namespace oam::torture {

// What is in the exports that may be imported, by file name.
using Saves = std::map<std::string, Configuration>;

struct Verdict {
    std::vector<Configuration> possible;
    std::string fault;  // what no order of events explains
    std::size_t acknowledged = 0;
    std::size_t underWay = 0;
};

using Steps = std::vector<const Step*>;
Steps StepsOf(const Oracle& oracle);

// Any of `before` may have been there. The acknowledged exports among the steps are in `saves`.
Verdict Judge(const std::vector<Configuration>& before, const Steps& steps, const Saves& saves);

}  // namespace oam::torture
