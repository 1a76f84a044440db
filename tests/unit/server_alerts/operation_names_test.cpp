#include "operations_test.h"

namespace oam::server {
namespace {

using ::testing::ElementsAre;

TEST_F(Operations, EndUnderTheNewNameOfTheirBoard) {
    const std::string id = Begin("Board 1");
    Rename("BOARD 1", "Board A");
    Rename("Board A", "Board B");
    EXPECT_EQ(TellStarted("Board B"), id);
    EXPECT_EQ(book_.Find(id)->board, "Board 1") << "as it was asked for";
}

TEST_F(Operations, EndUnderAnyNameThatTheirBoardHad) {
    const std::string first = Begin("Board 1");
    Rename("Board 1", "Board A");
    EXPECT_EQ(TellStarted("Board 1"), first) << "the service tells the name that was asked for";
    const std::string second = Begin("Board A");
    Rename("Board A", "Board B");
    Rename("Board B", "Board C");
    EXPECT_EQ(TellStarted("Board B"), second);
}

TEST_F(Operations, ARenameOfAnotherBoardIsNoneOfTheirs) {
    const std::string id = Begin("Board 1");
    Rename("Board 2", "Board A");
    EXPECT_EQ(TellStarted("Board A"), "");
    Rename("Board 1", "Board B");
    Rename("Board 1", "Board C");  // another board, which has the name now
    EXPECT_EQ(TellStarted("Board C"), "");
    EXPECT_EQ(TellStarted("Board B"), id);
}

TEST_F(Operations, TwoOfARenamedBoardAreTwoOnOneBoard) {
    const std::string first = Begin("Board 1");
    Rename("Board 1", "Board A");
    const std::string second = Begin("Board A");
    EXPECT_EQ(TellBeingStarted("Board A"), second);
    EXPECT_EQ(TellStarted("Board 1"), first);
}

TEST_F(Operations, AreListedUnderEveryNameOfTheirBoard) {
    const std::string id = Begin("Board 1");
    Rename("Board 1", "Board A");
    EXPECT_THAT(Listed(false, "board 1"), ElementsAre(id));
    EXPECT_THAT(Listed(false, "board a"), ElementsAre(id));
}

}  // namespace
}  // namespace oam::server
