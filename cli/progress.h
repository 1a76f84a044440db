// How far an operation on many boards is: one line at the end of standard error, for people who
// look. Nothing when that is no terminal, or when there is only one board.
#pragma once

#include <cstddef>

namespace oam {

class Progress {
  public:
    Progress(const char* verb, size_t all);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Show(size_t done);
    // Before anything else is written.
    void Clear();

  private:
    const char* const verb_;
    const size_t all_;
    const bool isShown_;
};

}  // namespace oam
