#include "base/foreign_frame.h"

namespace oam {
namespace {

constexpr int kInner = 3;  // the depth from which entries are counted

struct ThreadFrames {
    int depth = 0;
    int inner = 0;  // entered since the last frame of a lower depth
    bool isUsedUp = false;
};

constinit thread_local ThreadFrames frames;

}  // namespace

ForeignFrame::ForeignFrame() noexcept {
    ++frames.depth;
    if (frames.depth == 1) frames.isUsedUp = false;
    if (frames.depth < kInner) {
        frames.inner = 0;
    } else if (++frames.inner > kMostInnerEntries) {
        frames.isUsedUp = true;
    }
}

ForeignFrame::~ForeignFrame() { --frames.depth; }

bool ForeignFrame::MayEnter() const noexcept {
    return frames.depth <= kDeepestEntry && (frames.depth < kInner || !frames.isUsedUp);
}

int ForeignFrame::Depth() noexcept { return frames.depth; }

InheritedDepth::InheritedDepth(int depth) noexcept : own_(frames.depth) {
    if (depth > own_) frames.depth = depth;
}

InheritedDepth::~InheritedDepth() { frames.depth = own_; }

}  // namespace oam
