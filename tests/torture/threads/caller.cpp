#include "caller.h"

#include <algorithm>

#include "oam/entry.h"
#include "words.h"

namespace oam::torture {

namespace {

constexpr size_t kMostOpen = 2;

const Row& chosenRow(Random& random, unsigned allWeights) {
    unsigned turn = random.Below(allWeights);
    for (const Row& row : AllRows()) {
        if (turn < row.weight) return row;
        turn -= row.weight;
    }
    return AllRows().front();
}

}  // namespace

Caller::Caller(Storm& storm, unsigned seed, Where where)
    : storm_(storm), random_(seed), where_(where), client_(storm.NewClient()) {}

Caller::~Caller() { CloseAll(); }

void Caller::MakeOne() {
    if (storm_.IsQuiet()) CloseAll();
    chosenRow(random_, storm_.AllWeights()).make(*this);
}

std::string Caller::ExportFile() const {
    return storm_.Site().home.Path("out/" + std::to_string(client_ % 8) + ".oam");
}

std::string Caller::Board() {
    return !preferred_.empty() && random_.OneIn(2) ? preferred_ : AnyBoard(random_);
}

std::string Caller::Object() {
    return !preferred_.empty() && random_.OneIn(2) ? preferred_ : AnyObject(random_);
}

const Opening* Caller::Open(const std::string& object, unsigned mode, bool isStored) {
    if (storm_.IsQuiet()) return nullptr;
    if (openings_.size() == kMostOpen) Close(openings_.front(), random_.OneIn(4));
    Opening opening{0, object, mode, isStored};
    storm_.NoteOpened();
    const unsigned code =
        isStored
            ? Call(
                  "_oamDbOpenObject", {OAM_SUCCESS, OAMERR_NOT_FOUND, OAMERR_ACCESS_DENIED},
                  [&] { return unsigned{_oamDbOpenObject(object.c_str(), &opening.handle, mode)}; })
            : Call("_oamOpenObject", {OAM_SUCCESS, OAMERR_NOT_FOUND, OAMERR_ACCESS_DENIED}, [&] {
                  return unsigned{_oamOpenObject(client_, object.c_str(), &opening.handle, mode)};
              });
    if (code != OAM_SUCCESS) {
        storm_.NoteClosed();
        return nullptr;
    }
    openings_.push_back(opening);
    return &openings_.back();
}

const Opening* Caller::SomeOpening(bool isStored, unsigned mode) {
    for (const Opening& opening : openings_) {
        if (opening.isStored == isStored && (opening.mode & mode) == mode) return &opening;
    }
    return Open(Object(), mode, isStored);
}

void Caller::Close(const Opening& opening, bool isTold) {
    const Opening closed = opening;
    std::erase_if(openings_, [&](const Opening& other) { return other.handle == closed.handle; });
    // A name or number that another has taken, an object without a name, a board without its
    // plug-in.
    const Codes refusals = {OAM_SUCCESS, OAMERR_ALREADY_EXISTS, OAMERR_NOT_FOUND};
    if (closed.isStored) {
        Call("_oamDbCloseObject", refusals,
             [&] { return unsigned{_oamDbCloseObject(closed.handle)}; });
    } else if (isTold) {
        Call("_oamCloseObject", refusals, [&] { return unsigned{_oamCloseObject(closed.handle)}; });
    } else {
        Call("_oamCloseObject_WOAN", refusals,
             [&] { return unsigned{_oamCloseObject_WOAN(closed.handle)}; });
    }
    storm_.NoteClosed();
}

void Caller::CloseAll() {
    while (!openings_.empty()) Close(openings_.back(), true);
}

void Caller::ForgetClients() {
    std::erase_if(openings_, [&](const Opening& opening) {
        if (!opening.isStored) storm_.NoteClosed();
        return !opening.isStored;
    });
}

}  // namespace oam::torture
