#include "stream_ledger.h"

#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>

#include "await.h"

namespace oam::torture {
namespace {

using Json = nlohmann::json;

std::uint64_t numberIn(const Json& record, const char* name) {
    const Json& value = record.at(name);
    return value.is_string() ? std::stoull(value.get<std::string>()) : value.get<std::uint64_t>();
}

// One host's records, in the stream's order.
struct Series {
    std::vector<Json> records;

    std::uint64_t Last() const {
        if (records.empty()) return 0;
        const Json& last = records.back();
        return last.contains("gap") ? numberIn(last.at("gap"), "last") : numberIn(last, "sequence");
    }
};

std::map<std::string, Series> readStream(Fleet& fleet) {
    std::map<std::string, Series> all;
    for (const test::Kept& kept : fleet.Keeper().Records("OAM_ALERTS")) {
        const std::string host = kept.subject.substr(kept.subject.rfind('.') + 1);
        all[host].records.push_back(Json::parse(kept.data));
    }
    return all;
}

void compare(test::Host& host, const Series& series, StreamLedger* ledger) {
    std::map<std::uint64_t, v1::Alert> ring;
    for (v1::Alert& alert : host.Ring()) ring.emplace(alert.sequence(), std::move(alert));
    const auto fault = [&](std::uint64_t number, const std::string& what) {
        ledger->faults.push_back(host.Name() + " " + std::to_string(number) + ": " + what);
    };
    std::uint64_t next = 1;
    for (const Json& record : series.records) {
        if (record.contains("gap")) {
            const std::uint64_t first = numberIn(record.at("gap"), "first");
            const std::uint64_t last = numberIn(record.at("gap"), "last");
            if (first != next) fault(first, "a gap that begins elsewhere");
            if (ring.lower_bound(first) != ring.upper_bound(last))
                fault(first, "in a gap, though the host has it");
            ledger->inGaps += last - first + 1;
            ledger->hostsWithGaps.insert(host.Name());
            next = last + 1;
            continue;
        }
        const std::uint64_t number = numberIn(record, "sequence");
        if (number < next) fault(number, "twice, or out of order");
        if (number > next) fault(next, "missing");
        const auto own = ring.find(number);
        if (own != ring.end() && record.at("text") != own->second.text())
            fault(number, "is another than the host's");
        ++ledger->alerts;
        next = number + 1;
    }
    const std::uint64_t newest = ring.empty() ? 0 : ring.rbegin()->first;
    if (next != newest + 1) fault(newest, "the newest is missing");
}

}  // namespace

bool AwaitCaughtUp(Fleet& fleet) {
    const test::Observer keeper = fleet.Keeper();
    std::size_t done = 0;  // the hosts before this one have nothing left
    return test::Await(
        [&] {
            for (; done < fleet.Size(); ++done) {
                test::Host& host = fleet.At(done);
                const auto last = keeper.Last("OAM_ALERTS", "oam.alerts." + host.Name());
                const Series series{last.empty() ? std::vector<Json>{}
                                                 : std::vector<Json>{Json::parse(last)}};
                if (series.Last() < host.Newest()) return false;
            }
            return true;
        },
        std::chrono::seconds(300));
}

StreamLedger CompareStreamWithHosts(Fleet& fleet) {
    StreamLedger ledger;
    if (!AwaitCaughtUp(fleet)) ledger.faults.push_back("the stream does not catch up");
    auto all = readStream(fleet);
    for (std::size_t i = 0; i < fleet.Size(); ++i) {
        test::Host& host = fleet.At(i);
        compare(host, all[host.Name()], &ledger);
        all.erase(host.Name());
    }
    for (const auto& [host, series] : all)
        ledger.faults.push_back("records of a host that is none: " + host);
    return ledger;
}

}  // namespace oam::torture
