#include "rows.h"

#include <utility>

namespace oam::bench {

Row& Row::Ours(Clock clock, Run run) {
    sides.push_back({Part::kOurs, "ours", clock, std::move(run)});
    return *this;
}

Row& Row::Limit(Clock clock, std::string name, Run run) {
    sides.push_back({Part::kLimit, std::move(name), clock, std::move(run)});
    return *this;
}

Row& Row::Peer(Clock clock, std::string name, Run run) {
    sides.push_back({Part::kPeer, std::move(name), clock, std::move(run)});
    return *this;
}

std::vector<Row>& rows() {
    static std::vector<Row> all;
    return all;
}

Row& addRow(std::string id, std::string operation, double limitTarget, double peerTarget) {
    rows().push_back({std::move(id), std::move(operation), limitTarget, peerTarget, {}});
    return rows().back();
}

}  // namespace oam::bench
