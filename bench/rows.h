// What is measured: rows of one table, each with up to three sides.
//
// A side is a Google Benchmark function. All sides of a row are run one behind the other, round for
// round, so that what disturbs the machine disturbs them alike; a ratio is taken within each round
// as well as of the medians.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <vector>

namespace oam::bench {

enum class Part { kOurs, kLimit, kPeer };

// What is timed: the loop as a whole; what the side times itself, because it prepares something
// beside the clock; or one such time a round, for operations that take long.
enum class Clock { kWhole, kOwn, kOnce };

using Run = std::function<void(benchmark::State&)>;

struct Side {
    Part part;
    std::string name;
    Clock clock;
    Run run;
};

struct Row {
    std::string id;          // also the benchmark's name
    std::string operation;   // as the table tells it
    double limitTarget = 0;  // the ratio to reach; 0: none
    double peerTarget = 0;
    std::vector<Side> sides;

    Row& Ours(Clock clock, Run run);
    Row& Limit(Clock clock, std::string name, Run run);
    // A peer that is not installed is said in the table: no function.
    Row& Peer(Clock clock, std::string name, Run run);
};

// The rows in the order of the table. Each file of this folder adds its own.
std::vector<Row>& rows();
Row& addRow(std::string id, std::string operation, double limitTarget, double peerTarget = 0);

void addDatabaseRows();
void addLookUpRows();
void addAlertRows();
void addShadowRows();
void addBulkRows();
void addStartRows();
void addHpiRows();

}  // namespace oam::bench
