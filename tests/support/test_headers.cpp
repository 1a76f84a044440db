// Built for its precompiled headers alone (see tests/CMakeLists.txt).
int main() { return 0; }
