#include "storm.h"

#include <sys/mman.h>

#include <cstdio>
#include <cstdlib>

#include "oam/shadow.h"

namespace oam::torture {
namespace {

bool attach(Storm& storm) {
    if (oamShadowInit() == OAM_SUCCESS) return true;
    storm.Tell("a peer cannot attach");
    return false;
}

void look(Storm& storm) {
    std::string fault;
    const oam_result read = oamShadowGetPtr()->Read([&](const CBoardIDsShadow::Contents& contents) {
        const Generation found = Understand(contents, &fault);
        const Generation acknowledged = storm.acknowledged;
        if (found != acknowledged && found != storm.taken)
            fault += "found " + std::to_string(found) + " after " + std::to_string(acknowledged) +
                     " was acknowledged and " + std::to_string(storm.taken) + " taken\n";
        // Seen once it counts, also when its writer died before it said so.
        storm.acknowledged = found;
        return OAM_SUCCESS;
    });
    if (read != OAM_SUCCESS) fault += "the shadow cannot be read\n";
    if (!fault.empty()) storm.Tell(fault);
}

// One board's two texts and its number, by three calls: each whole, if not of one moment.
void askAsAnybody(Storm& storm) {
    char name[129];
    char driver[129];
    char id[65];
    unsigned number = 0;
    const oam_result listed = oamShadowBoardEnum(0, 0, name, sizeof name);
    if (listed == OAMERR_NOT_FOUND) return;  // nothing was published yet
    const oam_result asked =
        oamShadowBoardGetDriverIDs(0, name, driver, sizeof driver, id, sizeof id);
    const oam_result numbered = oamShadowBoardGetNumber(0, name, &number);
    for (const oam_result code : {listed, asked, numbered})
        if (code != OAM_SUCCESS && code != OAMERR_NOT_FOUND)
            storm.Tell("a reader is answered " + std::to_string(code));
    if (asked != OAM_SUCCESS) return;
    unsigned long long ofDriver = 0;
    unsigned long long ofId = 0;
    if (std::sscanf(driver, "%llu-", &ofDriver) != 1 || std::sscanf(id, "%*d-%llu", &ofId) != 1 ||
        ofDriver != ofId)
        storm.Tell(std::string(name) + " has the driver " + driver + " and the board " + id);
}

}  // namespace

Storm& Storm::Make() {
    void* memory =
        mmap(nullptr, sizeof(Storm), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) std::abort();
    return *static_cast<Storm*>(memory);
}

void Storm::Tell(const std::string& text) {
    if (!hasFault.exchange(true)) std::snprintf(fault, sizeof fault, "%s", text.c_str());
}

int WriteInStorm(Storm& storm, std::size_t peer) {
    if (!attach(storm)) return 1;
    CBoardIDsShadow& shadow = *oamShadowGetPtr();
    for (;; ++storm.rounds.at(peer)) {
        if (!shadow.Lock()) storm.Tell("a writer does not get the lock");
        look(storm);  // what a dead writer has completed counts before a number is taken
        const Generation mine = ++storm.taken;
        if (Publish(shadow, mine) != OAM_SUCCESS) storm.Tell("a writer cannot publish");
        storm.acknowledged = mine;
        shadow.Unlock();
    }
}

int ReadInStorm(Storm& storm, std::size_t peer) {
    if (!attach(storm)) return 1;
    for (;; ++storm.rounds.at(peer)) {
        look(storm);
        askAsAnybody(storm);
    }
}

}  // namespace oam::torture
