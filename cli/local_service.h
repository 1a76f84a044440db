// The service running in this process, for one command: lock, start, work, stop.
//
// Invariants: the lock is held from before _oamInit until after _oamExit; _oamExit runs on every
// way out; whatever the service reports as a warning or error meanwhile reaches standard error.
#pragma once

#include <ctime>
#include <string>

#include "lock_file.h"
#include "service.h"

namespace oam {

class Console;
class Installation;

class LocalService : public Service {
  public:
    // Starts the service, or throws a Failure that tells why it did not start.
    LocalService(const Installation& place, const std::string& command, Console& console,
                 const Interruption& interruption);
    // Stops it. Boards marked for automatic stop are stopped first.
    ~LocalService() override;
    LocalService(const LocalService&) = delete;
    LocalService& operator=(const LocalService&) = delete;

    std::vector<std::string> ObjectNames() override;
    std::vector<KeywordFacts> ReadObject(const std::string& name,
                                         const std::vector<std::string>& keywords) override;
    std::vector<KeywordFacts> DescribeObject(const std::string& name,
                                             const std::vector<std::string>& keywords) override;
    std::vector<KeywordFacts> ReadQualifier(const std::string& name,
                                            const std::vector<std::string>& keywords,
                                            const std::string& qualifier) override;
    void ChangeObject(const std::string& name, const std::vector<Assignment>& changes) override;
    std::string CreateBoard(const std::string& product) override;
    BoardSetChange DeleteBoards(const std::optional<std::string>& name) override;
    std::vector<DetectedBoard> DetectBoards() override;
    BoardSetChange AddDetectedBoards(const std::optional<std::string>& name) override;
    std::vector<std::string> BoardNames() override;
    std::vector<BoardFacts> Boards() override;
    std::string RequireBoard(const std::string& name) override;
    BoardFacts Board(const std::string& name) override;
    Answer LookUpBoard(const BoardIdentity& identity) override;
    int BoardStatus(const std::string& board, unsigned selector) override;
    void SendBuffer(const std::string& board, const std::string& bytes) override;
    std::unique_ptr<Operations> Operate(OperationKind kind) override;
    TransferFile ExportConfiguration(const std::string& file) override;
    TransferFile ImportConfiguration(const std::string& file) override;
    std::vector<ModuleFacts> Modules() override;
    std::string CodeName(unsigned code) override;
    std::unique_ptr<AlertStream> Watch(std::optional<std::uint64_t> after) override;

    // Which alerts the command wants; warnings and errors are kept besides.
    void Listen(AlertInbox::Wanted wanted);
    // The next alert kept; nothing at the deadline and after an interruption.
    std::optional<Alert> Wait(const AlertInbox::Deadline& deadline);
    // Passes an alert, or all that are kept, on to standard error.
    void Report(const Alert& alert);
    void ReportAlerts();

  private:
    [[noreturn]] void FailStart(unsigned code, time_t before);

    const Installation& place_;
    Console& console_;
    const Interruption& interruption_;
    LockFile lock_;
};

}  // namespace oam
