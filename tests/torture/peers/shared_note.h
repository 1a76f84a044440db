// A text that a child leaves for the test.
#pragma once

#include <sys/mman.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace oam::torture {

class SharedNote {
  public:
    // In memory that children share; it is never given back.
    static SharedNote& Make() {
        void* memory = mmap(nullptr, sizeof(SharedNote), PROT_READ | PROT_WRITE,
                            MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) std::abort();
        return *static_cast<SharedNote*>(memory);
    }

    void Write(const std::string& text) { std::snprintf(text_, sizeof text_, "%s", text.c_str()); }
    std::string Text() const { return text_; }

  private:
    char text_[4096];
};

}  // namespace oam::torture
