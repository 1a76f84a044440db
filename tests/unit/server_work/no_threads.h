// The system has no thread to give, to the whole process, while one of these lives.
#pragma once

namespace oam::server::test {

class NoThreads {
  public:
    // The first `given` threads are still to be had.
    explicit NoThreads(int given = 0);
    ~NoThreads();
    NoThreads(const NoThreads&) = delete;
    NoThreads& operator=(const NoThreads&) = delete;
};

}  // namespace oam::server::test
