// The front of the board shadow: what any process calls to read it, and what the service calls to
// write it. Each is whole under the segment's lock, and the process's view is not given up
// meanwhile. Nobody waits for the segment's lock with the process's own held: a caller that holds
// the segment's lock itself would otherwise wait for a thread that waits for it.

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
    int users = 1;             // under the process's mutex; the process is one
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

void leave(View* view) noexcept {
    if (view == nullptr) return;
    {
        KorGuard hold(process().mutex);
        if (--view->users > 0) return;
    }
    delete view;
}

// The process's view for one call. oamShadowExit during it leaves the view to the last user.
class UsedView {
  public:
    UsedView() noexcept {
        KorGuard hold(process().mutex);
        view_ = process().view;
        if (view_ != nullptr) ++view_->users;
    }
    ~UsedView() { leave(view_); }
    UsedView(const UsedView&) = delete;
    UsedView& operator=(const UsedView&) = delete;

    CBoardIDsShadow* Shadow() const noexcept { return view_ != nullptr ? &view_->shadow : nullptr; }

  private:
    View* view_ = nullptr;
};

template <class Use>
oam_result read(Use use) noexcept {
    const UsedView view;
    return view.Shadow() != nullptr ? view.Shadow()->Read(use) : OAMERR_NOT_ENOUGH_MEMORY;
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
    const UsedView view;
    return view.Shadow() != nullptr ? view.Shadow()->Publish(image) : OAMERR_NOT_ENOUGH_MEMORY;
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
    View* view;
    {
        KorGuard hold(process().mutex);
        view = process().view;
        process().view = nullptr;
    }
    leave(view);
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
