#include "board_making.h"

#include <algorithm>
#include <iterator>

#include "failure.h"
#include "object_kind.h"
#include "object_reading.h"

namespace oam {
namespace {

std::vector<std::string> newIn(const std::vector<std::string>& names,
                               const std::vector<std::string>& before) {
    std::vector<std::string> added;
    std::set_difference(names.begin(), names.end(), before.begin(), before.end(),
                        std::back_inserter(added), NameLess());
    return added;
}

// A creation that failed half-way may leave this thread holding the service's table lock until it
// next enters the service; a question is enough.
void enterService() {
    char name[2];
    (void)_oamBoardEnum(0, name, sizeof name);
}

// Null stands for all of them.
const char* textOf(const std::optional<std::string>& name) {
    return name ? name->c_str() : nullptr;
}

}  // namespace

std::vector<std::string> BoardObjects() {
    auto names = ObjectNames();
    std::erase_if(names, [](const auto& name) { return KindOf(name) != ObjectKind::kBoard; });
    return names;
}

std::string CreateBoard(const std::string& product) {
    char name[128] = "";
    const unsigned code = _oamCreateBoard(product.c_str(), name, sizeof name);
    if (code == OAM_SUCCESS) return name;
    enterService();
    throw Failure(code, "cannot create a board of product " + Quoted(product),
                  "`oam plugin list` lists the products");
}

BoardSetChange DeleteBoards(const std::optional<std::string>& name) {
    const auto before = BoardObjects();
    const unsigned code = _oamDeleteBoard(textOf(name));
    return {newIn(before, BoardObjects()), code};
}

BoardSetChange AddDetectedBoards(const std::optional<std::string>& name) {
    const auto before = BoardObjects();
    const unsigned code = _oamAddDetectedBoard(textOf(name));
    if (code) enterService();
    return {newIn(BoardObjects(), before), code};
}

}  // namespace oam
