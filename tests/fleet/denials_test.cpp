// What a server denies is told to the link that it is meant for, as long as there is one.
#include "fleet/link/denials.h"

#include <optional>

namespace oam::fleet {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(FleetDenials, AreToldOnceToTheLinkThatTheyAreMeantFor) {
    Denials one, other;
    Denials::Tell(one.Number(), "this");
    Denials::Tell(one.Number(), "that");
    EXPECT_THAT(other.Take(), IsEmpty());
    EXPECT_THAT(one.Take(), ElementsAre("this", "that"));
    EXPECT_THAT(one.Take(), IsEmpty());
}

TEST(FleetDenials, ThatComeTooLateAreDropped) {
    std::optional<Denials> gone(std::in_place);
    const auto number = gone->Number();
    gone.reset();
    Denials::Tell(number, "late");
    Denials next;
    EXPECT_NE(next.Number(), number);
    EXPECT_THAT(next.Take(), IsEmpty());
}

TEST(FleetDenials, OfAServerThatDeniesWithoutEndAreBounded) {
    Denials denials;
    for (int i = 0; i < 20'000; ++i) Denials::Tell(denials.Number(), "no");
    EXPECT_EQ(denials.Take().size(), 10'000U);
}

}  // namespace
}  // namespace oam::fleet
