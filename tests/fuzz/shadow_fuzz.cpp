// The board shadow's readers, when another process has written anything at all into the segment or
// its journal.
//
// Each input is the segment's contents, padded with zeros; then an image in the journal, left by a
// writer that died; then the journal itself; then a segment that was cut to the input's length.
// Every reader answers what the bytes say, or a documented code; it reads nothing behind the
// segment, and nothing at all when there is too little of it.
#include "oam/shadow.h"

#include <algorithm>
#include <climits>

#include "fuzz_target.h"
#include "shadow_model.h"
#include "shadow_writer.h"
#include "temporary_installation.h"

namespace {

using namespace oam::fuzz;

using Bytes = std::vector<unsigned char>;

struct Name {
    oam_result code;
    std::string text;
};

template <class Query>
Name ask(Query query) {
    char text[129];
    const oam_result code = query(text, unsigned{sizeof text});
    if (code != OAM_SUCCESS) return {code, {}};
    Require(std::memchr(text, '\0', sizeof text) != nullptr, "a name ends in its buffer");
    const std::string name = text;
    // One byte too few; of a name that is empty there is no such buffer.
    const std::string before(name.size(), '?');
    std::string tooShort = before;
    const oam_result refused = query(tooShort.data(), static_cast<unsigned>(tooShort.size()));
    Require(refused == OAMERR_NOT_ENOUGH_MEMORY, "a name needs room for its end");
    Require(tooShort == before, "a short buffer is left alone");
    return {code, name};
}

Name nameAt(int index) {
    return ask([&](char* name, unsigned size) { return oamShadowBoardEnum(0, index, name, size); });
}

Name withNumber(unsigned number) {
    return ask([&](char* name, unsigned size) {
        return oamShadowBoardLookupByNumber(0, number, name, size);
    });
}

Name withDriver(const std::string& driver, const std::string& id) {
    return ask([&](char* name, unsigned size) {
        return oamShadowBoardLookupByDriverIDs(0, driver.c_str(), id.c_str(), name, size);
    });
}

struct Board {
    oam_result code = OAM_SUCCESS;
    unsigned number = 0;
    bool isALaw = false;
    char driverName[129] = "";
    char driverBoardId[65] = "";
};

Board named(const std::string& name) {
    Board board;
    board.code = oamShadowBoardGetNumber(0, name.c_str(), &board.number);
    const oam_result aLaw = oamShadowBoardIsUsingALaw(0, name.c_str(), &board.isALaw);
    const oam_result driver =
        oamShadowBoardGetDriverIDs(0, name.c_str(), board.driverName, sizeof board.driverName,
                                   board.driverBoardId, sizeof board.driverBoardId);
    Require(aLaw == board.code && driver == board.code, "one name leads to one board");
    return board;
}

// Nobody promises that a name is found among records that are out of order.
void isNotFoundOrOneOf(const ShadowModel& model, const Board& board) {
    if (board.code == OAMERR_NOT_FOUND) return;
    Require(board.code == OAM_SUCCESS, "a documented code");
    Require(model.HasOneThat([&](int i) {
        return model.Number(i) == board.number && model.IsALaw(i) == board.isALaw &&
               model.DriverName(i) == board.driverName &&
               model.DriverBoardId(i) == board.driverBoardId;
    }),
            "a name's answers are one record's");
}

void answersAs(const ShadowModel& model) {
    for (const int index : {INT_MIN, -1, model.Count(), INT_MAX})
        Require(nameAt(index).code == OAMERR_NOT_FOUND, "no board is beyond the last one");
    for (int i = 0; i < model.Count(); ++i) {
        const Name name = nameAt(i);
        Require(name.code == OAM_SUCCESS && name.text == model.Name(i), "each board has its name");
        const unsigned number = model.Number(i);
        const Name numbered = withNumber(number);
        Require(model.HasOneThat([&](int index) {
            return model.Number(index) == number && model.Name(index) == numbered.text;
        }),
                "a number leads to its board");
        Require(withDriver(model.DriverName(i), model.DriverBoardId(i)).code == OAM_SUCCESS,
                "a driver leads to a board");
        isNotFoundOrOneOf(model, named(name.text));
    }
    isNotFoundOrOneOf(model, named("no board"));
    bool isUsing = false;
    Require(oamShadowBoardGetIsUsingVxPlugin(0, &isUsing) == OAM_SUCCESS, "the flag can be read");
    Require(isUsing == model.IsUsingVxPlugin(), "the flag is what the segment says");
}

void answersNothing() {
    bool isUsing = false;
    for (const oam_result code : {nameAt(0).code, withNumber(0).code, withDriver("", "").code,
                                  named("").code, oamShadowBoardGetIsUsingVxPlugin(0, &isUsing)})
        Require(code == OAMERR_NOT_ENOUGH_MEMORY, "what is no shadow is not answered from");
}

void answers(const Bytes& contents) {
    const ShadowModel model(contents);
    if (model.IsShadow()) {
        answersAs(model);
    } else {
        answersNothing();
    }
}

// Any reader first completes what a dead writer has left.
Bytes contentsAfterReading(const ShadowWriter& writer) {
    (void)oamShadowBoardGetIsUsingVxPlugin(0, nullptr);
    return writer.Segment().Contents();
}

ShadowWriter& writer() {
    static const TemporaryInstallation home;
    static ShadowWriter instance([] {
        Require(oamShadowInit() == OAM_SUCCESS, "the shadow can be attached");
        return home.Path("shm").string();
    }());
    return instance;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ShadowWriter& other = writer();
    const Bytes image(data, data + std::min(size, kSegmentSize));
    Bytes padded = image;
    padded.resize(kSegmentSize);
    const Bytes empty(kSegmentSize);

    other.EmptyJournal();
    other.Segment().Put(padded.data(), padded.size());
    Require(contentsAfterReading(other) == padded, "reading changes nothing");
    answers(padded);

    other.Segment().Put(empty.data(), empty.size());
    other.LeaveImage(image);
    Require(contentsAfterReading(other) == padded, "an image that is whole is copied");

    other.PutJournal(data, size);
    Bytes expected = padded;
    if (const auto left = other.ImageLeft())
        std::copy(left->begin(), left->end(), expected.begin());
    Require(contentsAfterReading(other) == expected, "an image that is not whole is left alone");
    answers(expected);

    other.Segment().Resize(std::min(size, kSegmentSize - 1));
    answersNothing();
    other.Segment().Resize(kSegmentSize);
    return 0;
}
