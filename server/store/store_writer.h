// The one thread that writes the book. What has something to be written rings the bell.
//
// It opens the book when it first needs it, so that the daemon starts without one. When the book
// cannot be written it says so once, goes on trying, and says when it can again; what there was to
// be written meanwhile waits in memory, as far as the rooms keep it. A spoiled book is set aside,
// and a new one is begun.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "store/bell.h"
#include "store/database.h"

namespace oam::server {

// The writer's connection, open while it is good.
class BookConnection {
  public:
    BookConnection(const std::string& path, std::function<void(const std::string&)> complain);

    // StoreError when it cannot be opened.
    Database& Open();
    // Grows with every opening: what was known of the book's content may be wrong then.
    unsigned Openings() const { return openings_; }

    // After an error: the next Open begins anew.
    void Drop();
    void SetAsideIfSpoiled();

  private:
    void TellSetAside(const std::string& name);

    const std::string path_;
    const std::function<void(const std::string&)> complain_;
    std::unique_ptr<Database> database_;
    unsigned openings_ = 0;
};

// Something that is kept in the book.
class StoreJob {
  public:
    virtual ~StoreJob() = default;

    // Writes what there is, or some of it, on the writer's thread: true when there is more. A
    // StoreError, or no memory: it is tried again later.
    virtual bool Write(BookConnection& book) = 0;
};

class StoreWriter {
  public:
    using Complain = std::function<void(const std::string&)>;
    static constexpr std::chrono::milliseconds kPause{1000};  // after a failure

    // `complain` is called on the writer's thread and throws nothing. Bell and jobs outlive this.
    StoreWriter(Bell& bell, const std::string& path, std::vector<StoreJob*> jobs, Complain complain,
                std::chrono::milliseconds pause = kPause);
    // Writes what is left, then ends the thread, and the bell.
    ~StoreWriter();
    StoreWriter(const StoreWriter&) = delete;
    StoreWriter& operator=(const StoreWriter&) = delete;

  private:
    enum class Round { kDone, kMore, kFailed };
    void Work();
    Round WriteOnce();
    void Note(const std::string& failure);

    Bell& bell_;
    const std::string path_;
    const std::vector<StoreJob*> jobs_;
    const Complain complain_;
    const std::chrono::milliseconds pause_;
    BookConnection book_;
    bool isFailing_ = false;
    std::thread thread_;
};

}  // namespace oam::server
