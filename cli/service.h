// What a command asks of the service, wherever it runs: in this process (LocalService) or in the
// daemon (RemoteService). Both answer the same, to the byte.
//
// A refusal is a Failure. Names are compared without regard to case. One thread uses it at a time.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "alert_inbox.h"
#include "board_facts.h"
#include "board_identity.h"
#include "board_making.h"
#include "detected_boards.h"
#include "modules.h"
#include "object_change.h"
#include "object_kind.h"
#include "object_reading.h"
#include "transfer_file.h"

namespace oam {

class Daemon;
class Interruption;

enum class OperationKind { kStart, kStop, kTest };

// What came of one board's request.
struct OperationOutcome {
    enum class Kind { kDone, kFailed, kRefused };
    std::string board;
    Kind kind;
    std::string text;
};

// Requests to start, stop or test boards, and their outcomes as they come.
class Operations {
  public:
    virtual ~Operations() = default;

    // `value` is of a test alone. A refusal at once is an outcome, too.
    virtual std::optional<OperationOutcome> Request(const std::string& board, unsigned value) = 0;
    // The next outcome; nothing when none is expected any more, at the deadline, and after an
    // interruption.
    virtual std::optional<OperationOutcome> Next(const AlertInbox::Deadline& deadline) = 0;
    // What has no outcome yet, each with a remark on it or an empty text.
    virtual std::map<std::string, std::string, NameLess> Expected() const = 0;
    // When no outcome is waited for any more.
    virtual void Settle(const std::vector<std::string>&) {}
};

// Alerts as they come.
class AlertStream {
  public:
    virtual ~AlertStream() = default;

    // The next one; nothing at the deadline and after an interruption.
    virtual std::optional<Alert> Next(const AlertInbox::Deadline& deadline) = 0;
    // Which are missing before it, as a sentence; empty: none.
    virtual std::string TakeGap() = 0;
};

class Service {
  public:
    virtual ~Service() = default;

    // What only a daemon can be asked; null in this process.
    virtual Daemon* AsDaemon() { return nullptr; }

    virtual std::vector<std::string> ObjectNames() = 0;
    virtual std::vector<KeywordFacts> ReadObject(const std::string& name,
                                                 const std::vector<std::string>& keywords) = 0;
    virtual std::vector<KeywordFacts> DescribeObject(const std::string& name,
                                                     const std::vector<std::string>& keywords) = 0;
    virtual std::vector<KeywordFacts> ReadQualifier(const std::string& name,
                                                    const std::vector<std::string>& keywords,
                                                    const std::string& qualifier) = 0;
    virtual void ChangeObject(const std::string& name, const std::vector<Assignment>& changes) = 0;

    virtual std::string CreateBoard(const std::string& product) = 0;
    virtual BoardSetChange DeleteBoards(const std::optional<std::string>& name) = 0;
    virtual std::vector<DetectedBoard> DetectBoards() = 0;
    // Detects first. Why a board is not added, it remarks.
    virtual BoardSetChange AddDetectedBoards(const std::optional<std::string>& name) = 0;

    virtual std::vector<std::string> BoardNames() = 0;
    virtual std::vector<BoardFacts> Boards() = 0;
    // Spelled as the board table does. A name that it does not know is a Failure.
    virtual std::string RequireBoard(const std::string& name) = 0;
    virtual BoardFacts Board(const std::string& name) = 0;
    virtual Answer LookUpBoard(const BoardIdentity& identity) = 0;
    virtual int BoardStatus(const std::string& board, unsigned selector) = 0;
    virtual void SendBuffer(const std::string& board, const std::string& bytes) = 0;

    // Made before the first request.
    virtual std::unique_ptr<Operations> Operate(OperationKind kind) = 0;

    virtual TransferFile ExportConfiguration(const std::string& file) = 0;
    // Judged first: with findings nothing is changed.
    virtual TransferFile ImportConfiguration(const std::string& file) = 0;

    virtual std::vector<ModuleFacts> Modules() = 0;
    // The name that a plug-in or component gives a code; empty when nobody knows it.
    virtual std::string CodeName(unsigned code) = 0;

    // From now on, or (a daemon's alone) from behind that number.
    virtual std::unique_ptr<AlertStream> Watch(std::optional<std::uint64_t> after) = 0;
};

}  // namespace oam
