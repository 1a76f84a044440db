// What makes the plug-in beside it impossible to bind in full: a call that nobody serves.

extern "C" void aFunctionThatNobodyHas();

namespace {

// Never run; kept so that the linker has the name to ask for.
[[gnu::used]] void callNobody() { aFunctionThatNobodyHas(); }

}  // namespace
