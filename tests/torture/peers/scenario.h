// What a peer is killed in: where it starts from, what it does, and what may be there afterwards.
#pragma once

#include <functional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "generation.h"

namespace oam::torture {

struct Scenario {
    const char* name;
    // With the files of the shadow; another process has them open already, unless there are none.
    std::function<void()> leave;
    bool startsFromNothing;
    // In the peer: up to where it is killed, and where.
    std::function<void()> prepare;
    std::function<void()> work;
    std::set<Generation> possible;
};

const std::vector<Scenario>& Scenarios();
std::string NameOf(const Scenario& scenario);
std::ostream& operator<<(std::ostream& out, const Scenario& scenario);

// What the witness sees before each round.
constexpr Generation kFirst = 1;
// What those publish that come afterwards.
constexpr Generation kNext = 4;

}  // namespace oam::torture
