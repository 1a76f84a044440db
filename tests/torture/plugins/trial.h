// One trial: in a process of its own, a service is started, an entry is made hostile, and what must
// then be right is looked at.
#pragma once

#include <functional>
#include <optional>

#include "points.h"
#include "situation.h"
#include "watched_case.h"

namespace oam::torture {

// Makes the hostile act; called in the child.
using MakeAct = std::function<World::Act(World&, const Watched&)>;

// `expected` is what the situation's call must answer; nothing stands for any documented code.
void TryIn(const Situation& situation, const std::string& what, const MakeAct& makeAct,
           std::optional<unsigned> expected);

// A trial that is no situation's. `furnish` puts files into its installation first.
// With OAM_TORTURE_CASE in the environment only cases with this in their names are tried.
void TryCase(const std::string& name, const std::function<void(const test::Installation&)>& furnish,
             const std::function<void(const test::Installation&, const Watched&)>& body);

// A result of the service's own, as oam/codes.h has them.
bool IsDocumented(unsigned code);
// Its name, or its number.
std::string NameOfCode(unsigned code);

// Every one in a full run, else each `oneIn`th, from `shift` on: so rows of a matrix that begin one
// behind the other try other columns each.
std::vector<std::size_t> ShareOf(std::size_t count, std::size_t oneIn, std::size_t shift);

}  // namespace oam::torture
