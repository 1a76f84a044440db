#include "doors/shadow_door.h"

#include <cstring>
#include <memory>

#include "base/text.h"
#include "doors/doors.h"
#include "oam/shadow.h"

using oam::test::Doors;
using oam::test::ShadowDoor;

namespace {

// The image under construction: the writer makes one at a time, under the table lock.
std::vector<CBoardIDShadow>& image() {
    static std::vector<CBoardIDShadow> records;
    return records;
}

std::unique_ptr<CBoardIDsShadow>& view() {
    static std::unique_ptr<CBoardIDsShadow> shadow;
    return shadow;
}

}  // namespace

ShadowDoor& ShadowDoor::The() {
    static ShadowDoor door;
    return door;
}

void ShadowDoor::Reset() {
    *this = ShadowDoor();
    view().reset();
}

CBoardIDShadow::CBoardIDShadow(const char* boardName, unsigned boardNumber, const char* driver,
                               const char* boardId, bool aLaw) noexcept {
    memset(static_cast<void*>(this), 0, sizeof *this);
    oam::CopyCut(boardName, name, sizeof name);
    number = boardNumber;
    oam::CopyCut(driver, driverName, sizeof driverName);
    oam::CopyCut(boardId, driverBoardId, sizeof driverBoardId);
    isALaw = aLaw ? 1 : 0;
}

CBoardIDShadow::CBoardIDShadow() noexcept : CBoardIDShadow("", 0, "", "", false) {}

ShadowImage::ShadowImage(bool isUsingVxPlugin) noexcept : isUsingVxPlugin_(isUsingVxPlugin) {
    image().clear();
    ShadowDoor::The().publishedUsingVxPlugin = isUsingVxPlugin_;
}

void ShadowImage::Add(const CBoardIDShadow& board) noexcept { image().push_back(board); }

CBoardIDsShadow::CBoardIDsShadow() noexcept
    : CKorSharedMemoryArray("StandInShadow", sizeof(int)) {}

bool CBoardIDsShadow::prefix() noexcept { return false; }

void CBoardIDsShadow::suffix() noexcept { isUsingVxPlugin_ = false; }

oam_result CBoardIDsShadow::Publish(ShadowImage&) noexcept {
    ShadowDoor::The().published = image();
    std::string line = "Publish(";
    const char* separator = "";
    for (const CBoardIDShadow& board : image()) {
        line += std::string(separator) + board.name;
        separator = ", ";
    }
    return Doors::The().NoteCall("Publish", line + ")");
}

oam_result PublishShadow(ShadowImage& image) noexcept {
    return view() != nullptr ? view()->Publish(image) : OAMERR_NOT_ENOUGH_MEMORY;
}

oam_result oamShadowInit() noexcept {
    const oam_result result = Doors::The().Call("oamShadowInit");
    if (result == OAM_SUCCESS) view() = std::make_unique<CBoardIDsShadow>();
    return result;
}

oam_result oamShadowExit() noexcept {
    view().reset();
    return Doors::The().Call("oamShadowExit");
}

