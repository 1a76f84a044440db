// Operations have an identity: it can be asked and waited for, and what cannot be known is unknown.
#include "daemon_test.h"

namespace oam::test {
namespace {

class DaemonOperations : public DaemonTest {
  protected:
    void SetUp() override { Start(kMixedChassis); }
};

TEST_F(DaemonOperations, EndWithTheOutcomeThatThePlugInTells) {
    Client client(home);
    const v1::Operation good = Wait(client, StartBoard(client, "Good"), 60);
    EXPECT_EQ(good.state(), v1::Operation::STATE_DONE);
    EXPECT_EQ(good.text(), "Board is started.\n");
    EXPECT_GT(good.sequence(), 0u);
    const v1::Operation bad = Wait(client, StartBoard(client, "Bad"), 60);
    EXPECT_EQ(bad.state(), v1::Operation::STATE_FAILED);
    EXPECT_GT(bad.sequence(), good.sequence());
}

TEST_F(DaemonOperations, ThatDoNotEndInTimeAreRunningAndNotFailed) {
    Client client(home);
    const std::string id = StartBoard(client, "Stuck");
    EXPECT_EQ(Wait(client, id, 1).state(), v1::Operation::STATE_RUNNING);
    // The others are served meanwhile.
    EXPECT_EQ(Wait(client, StartBoard(client, "Good"), 60).state(), v1::Operation::STATE_DONE);
    Kill();
}

TEST_F(DaemonOperations, OfABoardThatIsNotThereAreRefusedWithTheReason) {
    Client client(home);
    v1::StartBoardRequest request;
    request.set_board("Bogus");
    v1::Operation operation;
    ASSERT_TRUE(
        Call(*client.operations, &v1::Operations::Stub::StartBoard, request, &operation).ok());
    EXPECT_EQ(operation.state(), v1::Operation::STATE_REFUSED);
    EXPECT_EQ(operation.refusal().code(), 0x40000004u);
}

TEST_F(DaemonOperations, ThatRanWhenTheDaemonWasKilledAreUnknownAfterwards) {
    std::string id;
    {
        Client client(home);
        id = StartBoard(client, "Stuck");
    }
    Kill();
    StartAgain();
    Client client(home);
    EXPECT_EQ(Wait(client, id, 60).state(), v1::Operation::STATE_UNKNOWN);
}

TEST_F(DaemonOperations, DoNotRunOnWhenTheServiceIsStartedAnew) {
    Client client(home);
    const std::string id = StartBoard(client, "Stuck");
    EXPECT_EQ(Wait(client, id, 1).state(), v1::Operation::STATE_RUNNING);
    Tool({"service", "restart"});
    EXPECT_NE(Wait(client, id, 0).state(), v1::Operation::STATE_RUNNING);
}

TEST_F(DaemonOperations, OfAnIdentityThatWasNeverGivenAreNotFound) {
    Client client(home);
    v1::GetOperationRequest request;
    for (const char* id : {"", "x", "1", "0-0", "99999-1", "18446744073709551616-1"}) {
        request.set_id(id);
        v1::Operation operation;
        EXPECT_EQ(Call(*client.operations, &v1::Operations::Stub::GetOperation, request, &operation)
                      .error_code(),
                  grpc::StatusCode::NOT_FOUND)
            << id;
    }
}

TEST_F(DaemonOperations, LetTheirWaitsBeCancelledAndGoOn) {
    Client client(home);
    const std::string id = StartBoard(client, "Stuck");
    std::thread waiter(
        [&] { EXPECT_EQ(Wait(client, id, 60).state(), v1::Operation::STATE_RUNNING); });
    v1::CancelWaitRequest request;
    request.set_id(id);
    v1::CancelWaitResponse response;
    do {
        ASSERT_TRUE(
            Call(*client.operations, &v1::Operations::Stub::CancelWait, request, &response).ok());
    } while (response.cancelled() == 0);
    waiter.join();
    Kill();
}

}  // namespace
}  // namespace oam::test
