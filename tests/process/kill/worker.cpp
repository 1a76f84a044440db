// The process that is killed. It tells every change before it begins ("> verb board value") and
// what came of it after ("< code"), so that whoever killed it knows what must be there.
//
//   worker change SEED   creates, changes, renames, starts and deletes boards for ever
//   worker import FILE   exports to FILE, then imports it for ever
//   worker list          one line a board: its name, a tab, its "Driver.Name"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "oam/entry.h"

namespace {

constexpr unsigned kSize = 128;

void tell(const std::string& verb, const std::string& board, const std::string& value) {
    printf("> %s\t%s\t%s\n", verb.c_str(), board.c_str(), value.c_str());
    fflush(stdout);
}

oam_result done(oam_result result) {
    printf("< %x\n", static_cast<unsigned>(result));
    fflush(stdout);
    return result;
}

std::string keyword(const char* object, const char* name) {
    unsigned long handle;
    if (_oamOpenObject(OAM_INTERNAL_CLIENT, object, &handle, OAM_OPEN_READ) != OAM_SUCCESS) {
        return {};
    }
    char value[kSize] = "";
    (void)_oamGetKeyword(handle, name, value, sizeof value);
    (void)_oamCloseObject(handle);
    return value;
}

oam_result change(const std::string& board, const char* name, const std::string& value) {
    unsigned long handle;
    if (auto failed = _oamOpenObject(OAM_INTERNAL_CLIENT, board.c_str(), &handle, OAM_OPEN_WRITE)) {
        return failed;
    }
    const oam_result set = _oamSetKeyword(handle, name, value.c_str());
    const oam_result closed = _oamCloseObject(handle);
    return set != OAM_SUCCESS ? set : closed;
}

std::vector<std::string> boards() {
    std::vector<std::string> names;
    char name[kSize];
    for (int i = 0; _oamBoardEnum(i, name, sizeof name) == OAM_SUCCESS; ++i) names.push_back(name);
    return names;
}

void changeForEver(unsigned seed) {
    constexpr size_t kMostBoards = 6;
    std::mt19937 random(seed);
    const std::string product = keyword("Supervisor", "Products[0]");
    for (unsigned step = 0;; ++step) {
        const std::string value = std::to_string(seed) + "-" + std::to_string(step);
        const std::vector<std::string> names = boards();
        if (names.empty() || (names.size() < kMostBoards && random() % 4 == 0)) {
            char made[kSize] = "";
            tell("create", "", "");
            const oam_result created = _oamCreateBoard(product.c_str(), made, sizeof made);
            printf("< %x\t%s\t%s\n", static_cast<unsigned>(created), made,
                   keyword(made, "Driver.Name").c_str());
            fflush(stdout);
            continue;
        }
        const std::string board = names[random() % names.size()];
        switch (random() % 8) {
            case 0:
                tell("delete", board, "");
                (void)done(_oamDeleteBoard(board.c_str()));
                break;
            case 1:
                tell("rename", board, "board " + value);
                (void)done(change(board, "Name", "board " + value));
                break;
            case 2:
                (void)_oamStartBoard(board.c_str(), 0);
                break;
            default:
                tell("set", board, value);
                (void)done(change(board, "Driver.Name", value));
        }
    }
}

void importForEver(const char* file) {
    if (_oamConfigExport(file) != OAM_SUCCESS) exit(3);
    for (;;) {
        tell("import", "", "");
        if (done(_oamConfigImport(file)) != OAM_SUCCESS) exit(4);
    }
}

void list() {
    for (const std::string& board : boards()) {
        printf("%s\t%s\n", board.c_str(), keyword(board.c_str(), "Driver.Name").c_str());
    }
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 2 || _oamInit() != OAM_SUCCESS) return 2;
    const std::string mode = arguments[1];
    if (mode == "change" && count == 3) {
        changeForEver(static_cast<unsigned>(strtoul(arguments[2], nullptr, 10)));
    }
    if (mode == "import" && count == 3) importForEver(arguments[2]);
    if (mode == "list") list();
    (void)_oamExit();
    return 0;
}
