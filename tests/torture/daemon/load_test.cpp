// 200 watchers and 50 clients at work: no outcome is lost, no gap goes unannounced, and the daemon
// does not grow.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "daemon_test.h"
#include "load_watchers.h"
#include "torture/crash/points.h"
#include "torture/support/resources.h"

namespace oam::torture {
namespace {

using std::chrono::seconds;
using test::Call;
using test::Client;
using Clock = std::chrono::steady_clock;

constexpr int kWatchers = 200;
constexpr int kClients = 50;
constexpr int kBoards = 60;
// What the daemon keeps in memory, and what one of each may take.
constexpr double kAlertsKept = 20000, kOperationsKept = 10000, kAlertKb = 1, kOperationKb = 2;
constexpr double kAllowedKb = 6 * 1024;

std::string chassis() {
    std::string text;
    for (int i = 0; i < kBoards; ++i)
        text += "board: Sim " + std::to_string(i) +
                "\nproduct: SIM-E1\nbus: " + std::to_string(1 + i / 30) +
                "\nslot: " + std::to_string(i % 30 + 1) +
                "\nstart-time: 5ms\nstop-time: 1ms\ntest-time: 5ms\nstart: ok, ok, fail\n\n";
    return text;
}

// What one client has done.
struct Work {
    std::set<std::string> operations;  // that ended with an alert
    std::size_t refused = 0;
    std::size_t changes = 0;
    std::vector<std::string> faults;
    std::vector<double> milliseconds;  // of requests that need no plug-in's time
};

class LoadedDaemon : public test::DaemonTest {
  protected:
    LoadedDaemon() : DaemonTest(std::filesystem::exists("/dev/shm") ? "/dev/shm" : "/tmp") {}

    double ResidentKb() const {
        std::ifstream status("/proc/" + std::to_string(daemon->Pid()) + "/status");
        for (std::string word; status >> word;)
            if (word == "VmRSS:") {
                double kilobytes = 0;
                status >> kilobytes;
                return kilobytes;
            }
        return 0;
    }

    static void Operate(Client& client, const std::string& board, bool isStart, Work* work) {
        v1::Operation operation;
        grpc::Status status;
        if (isStart) {
            v1::StartBoardRequest request;
            request.set_board(board);
            status =
                Call(*client.operations, &v1::Operations::Stub::StartBoard, request, &operation);
        } else {
            v1::StopBoardRequest request;
            request.set_board(board);
            status =
                Call(*client.operations, &v1::Operations::Stub::StopBoard, request, &operation);
        }
        v1::WaitOperationRequest wait;
        wait.set_id(operation.id());
        if (status.ok())
            status =
                Call(*client.operations, &v1::Operations::Stub::WaitOperation, wait, &operation);
        switch (operation.state()) {
            case v1::Operation::STATE_DONE:
            case v1::Operation::STATE_FAILED:
                work->operations.insert(operation.id());
                break;
            case v1::Operation::STATE_REFUSED:
                ++work->refused;
                break;
            default:
                work->faults.push_back(operation.id() +
                                       " has no outcome: " + status.error_message());
        }
    }

    static void ChangeAndRead(Client& client, const std::string& board, unsigned long value,
                              Work* work) {
        v1::ChangeObjectRequest request;
        request.set_name(board);
        auto* const change = request.add_changes();
        change->set_keyword("Driver.BoardId");
        change->set_value(std::to_string(value));
        v1::ChangeObjectResponse changed;
        // Refused while another client has it open for writing.
        if (Call(*client.objects, &v1::Objects::Stub::ChangeObject, request, &changed).ok())
            ++work->changes;
        const auto begin = Clock::now();
        v1::GetBoardRequest get;
        get.set_name(board);
        v1::Board facts;
        const auto status = Call(*client.boards, &v1::Boards::Stub::GetBoard, get, &facts);
        work->milliseconds.push_back(
            std::chrono::duration<double, std::milli>(Clock::now() - begin).count());
        if (!status.ok()) work->faults.push_back("GetBoard: " + status.error_message());
    }

    // Each client has a board of its own, so that no operation is in another's way.
    Work WorkUntil(Clock::time_point end, int number, unsigned long seed) const {
        Work work;
        Client client(home);
        std::mt19937_64 random(seed + static_cast<unsigned long>(number));
        const std::string board = "Sim " + std::to_string(number);
        for (bool isStart = true; Clock::now() < end && work.faults.empty(); isStart = !isStart) {
            Operate(client, board, isStart, &work);
            if (random() % 4 == 0) ChangeAndRead(client, board, random() % 1000, &work);
        }
        return work;
    }

    std::uint64_t Newest(Client& client) const {
        v1::HostInfo info;
        EXPECT_TRUE(Call(*client.host, &v1::Host::Stub::GetHost, v1::GetHostRequest(), &info).ok());
        return info.newest_alert();
    }

    Work All(seconds time, unsigned long seed) const {
        const auto end = Clock::now() + time;
        std::vector<Work> works(kClients);
        std::vector<std::thread> threads;
        for (int i = 0; i < kClients; ++i)
            threads.emplace_back(
                [&, i] { works[static_cast<std::size_t>(i)] = WorkUntil(end, i, seed); });
        for (std::thread& thread : threads) thread.join();
        Work all;
        for (Work& work : works) {
            all.operations.merge(work.operations);
            all.refused += work.refused;
            all.changes += work.changes;
            all.faults.insert(all.faults.end(), work.faults.begin(), work.faults.end());
            all.milliseconds.insert(all.milliseconds.end(), work.milliseconds.begin(),
                                    work.milliseconds.end());
        }
        std::sort(all.milliseconds.begin(), all.milliseconds.end());
        return all;
    }
};

TEST_F(LoadedDaemon, LosesNoOutcomeAnnouncesEveryGapAndDoesNotGrow) {
    const unsigned long seed = Seed();
    const seconds third(IsFull() ? 20 : 2);
    Start(chassis());
    Client client(home);
    const std::uint64_t before = Newest(client);
    LoadWatchers watchers(home, kWatchers, before);
    Work first = All(third, seed);
    const double residentBefore = ResidentKb();
    const auto alertsBefore = static_cast<double>(Newest(client) - before);
    const auto operationsBefore = static_cast<double>(first.operations.size());
    const Work second = All(2 * third, seed + kClients);

    const double grown = ResidentKb() - residentBefore;
    const std::uint64_t newest = Newest(client);
    watchers.AwaitAll(newest);
    const auto alerts = static_cast<double>(newest - before);
    const auto operations = static_cast<double>(second.operations.size());
    const double fill =
        kAlertKb * std::min(alerts - alertsBefore, std::max(0.0, kAlertsKept - alertsBefore)) +
        kOperationKb * std::min(operations, std::max(0.0, kOperationsKept - operationsBefore));

    first.faults.insert(first.faults.end(), second.faults.begin(), second.faults.end());
    EXPECT_EQ(first.faults, std::vector<std::string>());
    EXPECT_EQ(watchers.Faults(), std::vector<std::string>());
    first.operations.insert(second.operations.begin(), second.operations.end());
    const std::size_t lost = watchers.Missed(first.operations);
    EXPECT_EQ(lost, 0u);
    EXPECT_GT(first.operations.size(), static_cast<std::size_t>(kClients));
    EXPECT_EQ(watchers.Alerts() + watchers.InGaps(), (newest - before) * kWatchers);
    if (kHasMeaningfulResident) {
        EXPECT_LT(grown, kAllowedKb + fill);
    }
    const auto& times = second.milliseconds;
    const std::string p99 =
        times.empty() ? "-" : std::to_string(static_cast<int>(times[times.size() * 99 / 100]));
    TellFigures("daemon load",
                Grouped(kWatchers) + " watchers and " + Grouped(kClients) + " clients, " +
                    std::to_string(3 * third.count()) + " s: " + Grouped(first.operations.size()) +
                    " outcomes, " + Grouped(first.changes + second.changes) + " changes, " +
                    Grouped(newest - before) + " alerts, " + Grouped(watchers.Alerts()) +
                    " told, " + Grouped(watchers.InGaps()) + " in gaps, " + Grouped(lost) +
                    " lost; a read took " + p99 + " ms at most in 99 of 100; grown by " +
                    Grouped(static_cast<unsigned long>(std::max(0.0, grown))) + " KB");
}

}  // namespace
}  // namespace oam::torture
