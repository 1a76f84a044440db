#include "survivor.h"

#include <chrono>

#include "oam/shadow.h"

namespace oam::torture {
namespace {

constexpr std::chrono::seconds kPatience{30};

std::string lookFor(const std::set<Generation>& possible) {
    std::string fault;
    const Generation found = Read(*oamShadowGetPtr(), &fault);
    if (possible.count(found) == 0) fault += "found generation " + std::to_string(found) + '\n';
    return fault;
}

// Through the functions that any process calls: one board's two texts are of one generation.
std::string ask(Generation generation) {
    const int last = BoardsOf(generation) - 1;
    char name[129];
    char driver[129];
    char id[65];
    unsigned number = 0;
    if (oamShadowBoardEnum(0, last, name, sizeof name) != OAM_SUCCESS ||
        oamShadowBoardGetNumber(0, name, &number) != OAM_SUCCESS ||
        oamShadowBoardGetDriverIDs(0, name, driver, sizeof driver, id, sizeof id) != OAM_SUCCESS)
        return "the last board cannot be read\n";
    return number == generation ? "" : std::string(name) + " has another's number\n";
}

std::string attachAndGoOn(const std::set<Generation>& possible, Generation next) {
    if (oamShadowInit() != OAM_SUCCESS) return "cannot attach\n";
    std::string fault = lookFor(possible);
    if (Publish(*oamShadowGetPtr(), next) != OAM_SUCCESS) fault += "cannot publish\n";
    return fault + lookFor({next}) + ask(next);
}

}  // namespace

std::string NextPeer(const std::set<Generation>& possible, Generation next) {
    static SharedNote& note = SharedNote::Make();
    note.Write("ended too early");
    test::ForkedChild peer([&] {
        note.Write(attachAndGoOn(possible, next));
        return 0;
    });
    if (!peer.EndsWithin(kPatience)) return "the next process waits without end";
    if (!peer.IsDone()) return "the next process came to status " + std::to_string(peer.Status());
    return note.Text().empty() ? "" : "the next process: " + note.Text();
}

Witness::Witness() : process_([this] { return Serve(); }) {}

int Witness::Serve() {
    const bool isAttached = oamShadowInit() == OAM_SUCCESS;
    for (;;) {
        if (!question_.Await()) continue;
        const Generation expected = std::stoull(note_.Text());
        note_.Write(isAttached ? lookFor({expected}) : "is not attached");
        answer_.Pass();
    }
}

std::string Witness::Expects(Generation generation) {
    note_.Write(std::to_string(generation));
    question_.Pass();
    if (!answer_.Await()) return "the witness waits without end";
    return note_.Text().empty() ? "" : "the witness: " + note_.Text();
}

}  // namespace oam::torture
