// One life of the component, from Init to Exit.
//
// Alerts come on any thread; their receiver calls nothing of the service that takes a lock, because
// whoever holds that lock may be waiting for the alert's delivery. So it only counts, and the names
// are compared with the board table when a client reads.
//
// A client's "Boards[i]" means one board for as long as it has the object open or until it reads
// "Boards.Count" again; the counts behind it are those of the moment.
//
// The settings in force are a copy of the stored ones, taken whenever the object is opened and when
// a change of it is closed. No lock of the component is held while the service is called.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "board_tallies.h"
#include "kit/handle_map.h"
#include "oam/codes.h"
#include "oam/message.h"

namespace oam::watch {

class Watch {
  public:
    // The name of the component's own object, which is its file's.
    explicit Watch(std::string objectName) : objectName_(std::move(objectName)) {}

    oam_result Begin();
    void End() {}
    void ReceiveAlert(const oam_msg_tag* message);

    // Under the manager lock.
    oam_result OpenObject(unsigned long handle, unsigned int mode);
    oam_result CloseObject(unsigned long handle);
    oam_result SetKeyword(unsigned long handle, const std::string& keyword, std::string_view value);
    oam_result GetKeyword(unsigned long handle, const std::string& keyword, char* buffer,
                          unsigned int size);
    oam_result GetQualifier(unsigned long handle, const std::string& keyword,
                            const std::string& qualifier, char* buffer, unsigned int size);

  private:
    using BoardIds = std::vector<BoardTallies::Id>;

    struct Reader {
        std::shared_ptr<const BoardIds> boards = std::make_shared<const BoardIds>();
        bool isWritable = false;
    };

    // What the settings of the open object say holds from now on.
    void TakeLimit(unsigned long handle);
    void TakePeriod(unsigned long handle);
    FailureLimit Limit() const;
    std::shared_ptr<const BoardIds> Boards();
    std::optional<std::string> Computed(unsigned long handle, const std::string& keyword);

    const std::string objectName_;
    mutable std::mutex limitLock_;
    FailureLimit limit_;
    std::string period_;  // under the manager lock
    BoardTallies tallies_;
    kit::HandleMap<Reader> readers_;
};

}  // namespace oam::watch
