// The front of the board shadow: what any process calls to read it, and what the service calls to
// write it. Each is whole under the segment's lock, and the process's view is not given up meanwhile.

#include <memory>

#include "base/forever.h"
#include "base/text.h"
#include "korcore/guard.h"
#include "oam/shadow.h"
#include "objects/shadow.h"

namespace {

struct View {
    CBoardIDsShadow shadow;
    View* replaced = nullptr;  // Kept: a second oamShadowInit does not release the first view.
};

struct Process {
    CKorLightMutex mutex{0};
    View* view GUARDED_BY(mutex) = nullptr;
    View* replaced GUARDED_BY(mutex) = nullptr;
};

Process& process() noexcept {
    static oam::Forever<Process> instance;
    return instance.Get();
}

template <class Use>
oam_result read(Use use) noexcept {
    KorGuard hold(process().mutex);
    View* view = process().view;
    return view != nullptr ? view->shadow.Read(use) : OAMERR_NOT_ENOUGH_MEMORY;
}

using Contents = CBoardIDsShadow::Contents;

// The frame of the readers: find(contents, &index), then use(board).
template <class Find, class Use>
oam_result readBoard(Find find, Use use) noexcept {
    return read([=](const Contents& contents) {
        int index;
        return find(contents, &index) ? use(contents.At(index)) : OAMERR_NOT_FOUND;
    });
}

template <class Find>
oam_result readName(Find find, char* name, unsigned size) noexcept {
    return readBoard(
        find, [=](const CBoardIDShadow& board) { return oam::CopyText(board.name, name, size); });
}

template <class Use>
oam_result readNamed(const char* name, Use use) noexcept {
    return readBoard(
        [=](const Contents& contents, int* index) { return contents.FindByName(name, index); },
        use);
}

}  // namespace

oam_result PublishShadow(ShadowImage& image) noexcept {
    KorGuard hold(process().mutex);
    View* view = process().view;
    return view != nullptr ? view->shadow.Publish(image) : OAMERR_NOT_ENOUGH_MEMORY;
}

oam_result oamShadowInit() noexcept {
    std::unique_ptr<View> view(new (std::nothrow) View);
    if (view == nullptr || !view->shadow.IsUsable()) return OAMERR_NOT_ENOUGH_MEMORY;
    KorGuard hold(process().mutex);
    if (View* earlier = process().view) {
        earlier->replaced = process().replaced;
        process().replaced = earlier;
    }
    process().view = view.release();
    return OAM_SUCCESS;
}

oam_result oamShadowExit() noexcept {
    KorGuard hold(process().mutex);
    delete process().view;
    process().view = nullptr;
    return OAM_SUCCESS;
}

CBoardIDsShadow* oamShadowGetPtr() noexcept {
    KorGuard hold(process().mutex);
    return process().view != nullptr ? &process().view->shadow : nullptr;
}

oam_result oamShadowBoardEnum(unsigned, int index, char* name, unsigned size) noexcept {
    return readName(
        [=](const Contents& contents, int* found) {
            *found = index;
            return index >= 0 && index < contents.Count();
        },
        name, size);
}

oam_result oamShadowBoardLookupByNumber(unsigned, unsigned number, char* name,
                                        unsigned size) noexcept {
    return readName(
        [=](const Contents& contents, int* index) { return contents.FindByNumber(number, index); },
        name, size);
}

oam_result oamShadowBoardLookupByDriverIDs(unsigned, const char* driverName,
                                           const char* driverBoardId, char* name,
                                           unsigned size) noexcept {
    return readName(
        [=](const Contents& contents, int* index) {
            return contents.FindByDriverIDs(driverName, driverBoardId, index);
        },
        name, size);
}

oam_result oamShadowBoardGetNumber(unsigned, const char* name, unsigned* number) noexcept {
    return readNamed(name, [=](const CBoardIDShadow& board) {
        if (number != nullptr) *number = board.number;
        return OAM_SUCCESS;
    });
}

oam_result oamShadowBoardGetDriverIDs(unsigned, const char* name, char* driverName,
                                      unsigned driverNameSize, char* driverBoardId,
                                      unsigned driverBoardIdSize) noexcept {
    return readNamed(name, [=](const CBoardIDShadow& board) {
        if (auto failed = oam::CopyText(board.driverName, driverName, driverNameSize)) {
            return failed;
        }
        return oam::CopyText(board.driverBoardId, driverBoardId, driverBoardIdSize);
    });
}

oam_result oamShadowBoardGetIsUsingVxPlugin(unsigned, bool* isUsing) noexcept {
    return read([=](const Contents& contents) {
        if (isUsing != nullptr) *isUsing = contents.IsUsingVxPlugin();
        return OAM_SUCCESS;
    });
}

oam_result oamShadowBoardIsUsingALaw(unsigned, const char* name, bool* aLaw) noexcept {
    return readNamed(name, [=](const CBoardIDShadow& board) {
        if (aLaw != nullptr) *aLaw = board.isALaw != 0;
        return OAM_SUCCESS;
    });
}
