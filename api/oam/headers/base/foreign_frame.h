// How deep foreign code may lead to foreign code on one thread.
//
// An entry may call the service, and the service another entry, or the same again. A module that
// does so each time would go on until the stack is used up, or, where one call leads to several,
// for longer than anybody waits. So there is an end to the depth; and one to the number of entries
// that lie inside an entry inside an entry, where work that means something no longer is. Once that
// number was reached, nothing more is entered at that depth until the outermost entry returns.
#pragma once

namespace oam {

constexpr int kDeepestEntry = 64;
constexpr int kMostInnerEntries = 1024;

// One call of an entry; made around it. An entry that may not be entered is not called.
class ForeignFrame {
  public:
    ForeignFrame() noexcept;
    ~ForeignFrame();
    ForeignFrame(const ForeignFrame&) = delete;
    ForeignFrame& operator=(const ForeignFrame&) = delete;

    bool MayEnter() const noexcept;

    // How many entries the thread is inside of.
    static int Depth() noexcept;
};

// For what another thread has left to this one: it lies as deep as it did there. Otherwise two
// threads could lead each other on for ever.
class InheritedDepth {
  public:
    explicit InheritedDepth(int depth) noexcept;
    ~InheritedDepth();
    InheritedDepth(const InheritedDepth&) = delete;
    InheritedDepth& operator=(const InheritedDepth&) = delete;

  private:
    const int own_;
};

}  // namespace oam
