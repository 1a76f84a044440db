#include "visitor.h"

#include <climits>
#include <fstream>
#include <vector>

#include "fuzz/shadow_model.h"
#include "oam/shadow.h"
#include "peer_files.h"
#include "shared_note.h"
#include "support/forked_child.h"

namespace oam::torture {
namespace {

constexpr std::chrono::seconds kPatience{30};
constexpr Generation kMine = 7;

bool isDocumented(oam_result code) {
    return code == OAM_SUCCESS || code == OAMERR_NOT_FOUND || code == OAMERR_NOT_ENOUGH_MEMORY;
}

std::string checkCode(const char* function, oam_result code) {
    if (isDocumented(code)) return {};
    return std::string(function) + " answers " + std::to_string(code) + '\n';
}

fuzz::ShadowModel modelOf(std::vector<unsigned char>* bytes) {
    std::ifstream file(SharedPath(kSegmentFile), std::ios::binary);
    bytes->assign(fuzz::kSegmentSize, 0);
    file.read(reinterpret_cast<char*>(bytes->data()), static_cast<std::streamsize>(bytes->size()));
    return fuzz::ShadowModel(*bytes);
}

// Position by position: the bytes' name, or the code for none.
std::string compareNames() {
    std::vector<unsigned char> bytes;
    const fuzz::ShadowModel model = modelOf(&bytes);
    std::string fault;
    for (int index = -1; index < 40; ++index) {
        char name[129] = "";
        const oam_result code = oamShadowBoardEnum(0, index, name, sizeof name);
        const bool isThere = model.IsShadow() && index >= 0 && index < model.Count();
        const oam_result expected = !model.IsShadow() ? OAMERR_NOT_ENOUGH_MEMORY
                                    : isThere         ? OAM_SUCCESS
                                                      : OAMERR_NOT_FOUND;
        if (code != expected || (isThere && name != model.Name(index)))
            fault += "position " + std::to_string(index) + " is \"" + name + "\", code " +
                     std::to_string(code) + '\n';
    }
    return fault;
}

std::string publish(Outcome expected) {
    const oam_result published = Publish(*oamShadowGetPtr(), kMine);
    if (expected == Outcome::kCannotPublish)
        return published == OAMERR_NOT_ENOUGH_MEMORY ? "" : "it could publish\n";
    if (published != OAM_SUCCESS) return "it cannot publish\n";
    std::string fault;
    const Generation found = Read(*oamShadowGetPtr(), &fault);
    return found == kMine ? fault : fault + "what it published is not there\n";
}

std::string comeAndGo(Outcome expected, std::optional<Generation> first) {
    const oam_result attached = oamShadowInit();
    if (expected == Outcome::kIsRefused) {
        if (attached != OAMERR_NOT_ENOUGH_MEMORY) return "it could attach\n";
        return oamShadowGetPtr() == nullptr ? "" : "it is attached all the same\n";
    }
    if (attached != OAM_SUCCESS) return "it cannot attach\n";
    (void)oamShadowBoardGetIsUsingVxPlugin(0, nullptr);  // completes what a dead writer left
    std::string fault = compareNames();
    if (first && Read(*oamShadowGetPtr(), &fault) != *first) fault += "it reads another table\n";
    fault += ReadAnything();
    fault += publish(expected);
    return fault;
}

}  // namespace

std::string ReadAnything() {
    std::string fault;
    for (const unsigned size : {0U, 1U, 64U, 129U}) {
        char name[129];
        char driver[129];
        char id[129];
        for (const int index : {INT_MIN, 0, 30, 31, INT_MAX})
            fault += checkCode("Enum", oamShadowBoardEnum(0, index, name, size));
        fault += checkCode("LookupByNumber", oamShadowBoardLookupByNumber(0, 7, name, size));
        const std::string longest(128, 'A');
        fault += checkCode("LookupByDriverIDs",
                           oamShadowBoardLookupByDriverIDs(0, longest.c_str(), "", name, size));
        fault += checkCode("GetDriverIDs",
                           oamShadowBoardGetDriverIDs(0, longest.c_str(), driver, size, id, size));
    }
    unsigned number = 0;
    bool flag = false;
    fault += checkCode("GetNumber", oamShadowBoardGetNumber(0, "", &number));
    fault += checkCode("IsUsingALaw", oamShadowBoardIsUsingALaw(0, "Board", &flag));
    fault += checkCode("GetIsUsingVxPlugin", oamShadowBoardGetIsUsingVxPlugin(0, &flag));
    return fault;
}

std::string Visit(Outcome expected, std::optional<Generation> first) {
    static SharedNote& note = SharedNote::Make();
    note.Write("ended too early");
    test::ForkedChild visitor([=] {
        note.Write(comeAndGo(expected, first));
        return 0;
    });
    if (!visitor.EndsWithin(kPatience)) return "waits without end";
    if (!visitor.IsDone()) return "came to status " + std::to_string(visitor.Status());
    return note.Text();
}

}  // namespace oam::torture
