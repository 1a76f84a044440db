#include "local_service.h"

#include <unistd.h>

#include <ctime>
#include <set>

#include "board_access.h"
#include "configuration_file.h"
#include "console.h"
#include "failure.h"
#include "foreign_text.h"
#include "local_operations.h"
#include "startup_log.h"

namespace oam {
namespace {

const Installation& ready(const Installation& place) {
    place.RequireReady(R_OK | W_OK | X_OK);
    return place;
}

unsigned int receive(unsigned long client, const oam_msg_tag* message) {
    if (client == OAM_INTERNAL_CLIENT) AlertInbox::Instance().Put(*message);
    return OAM_SUCCESS;
}

AlertInbox& inbox() { return AlertInbox::Instance(); }

class LocalAlerts : public AlertStream {
  public:
    explicit LocalAlerts(LocalService& service) : service_(service) {
        service.Listen([](const Alert&) { return true; });
    }

    std::optional<Alert> Next(const AlertInbox::Deadline& deadline) override {
        return service_.Wait(deadline);
    }
    std::string TakeGap() override {
        const size_t lost = inbox().TakeLost();
        return lost ? std::to_string(lost) + " alerts came too fast and are lost" : std::string();
    }

  private:
    LocalService& service_;
};

}  // namespace

LocalService::LocalService(const Installation& place, const std::string& command, Console& console,
                           const Interruption& interruption)
    : place_(ready(place)), console_(console), interruption_(interruption), lock_(place, command) {
    Listen([](const Alert&) { return false; });
    (void)_oamAlertRegisterCallback(receive);
    const time_t before = time(nullptr);
    const unsigned code = _oamInit();
    if (code) FailStart(code, before);
    ReportAlerts();
}

// The service asks every board to stop and tells when one is busy, also of boards that it would not
// have stopped; only what it tells of marked ones matters.
LocalService::~LocalService() {
    ReportAlerts();
    std::set<std::string, NameLess> marked;
    for (const std::string& board : BoardNames())
        if (IsStoppedAtExit(board)) marked.insert(board);
    ReportAlerts();
    inbox().Listen([marked](const Alert& alert) {
        return alert.severity != OAM_INFORMATION &&
               (alert.code != OAMEVN_STOPBOARD_DONE || marked.contains(alert.source));
    });
    (void)_oamExit();
    ReportAlerts();
    (void)_oamAlertRegisterCallback(nullptr);
}

std::vector<std::string> LocalService::ObjectNames() { return oam::ObjectNames(); }

std::vector<KeywordFacts> LocalService::ReadObject(const std::string& name,
                                                   const std::vector<std::string>& keywords) {
    return oam::ReadObject(name, keywords);
}

std::vector<KeywordFacts> LocalService::DescribeObject(const std::string& name,
                                                       const std::vector<std::string>& keywords) {
    return oam::DescribeObject(name, keywords);
}

std::vector<KeywordFacts> LocalService::ReadQualifier(const std::string& name,
                                                      const std::vector<std::string>& keywords,
                                                      const std::string& qualifier) {
    return oam::ReadQualifier(name, keywords, qualifier);
}

void LocalService::ChangeObject(const std::string& name, const std::vector<Assignment>& changes) {
    ApplyChange(name, changes);
}

std::string LocalService::CreateBoard(const std::string& product) {
    return oam::CreateBoard(product);
}

BoardSetChange LocalService::DeleteBoards(const std::optional<std::string>& name) {
    return oam::DeleteBoards(name);
}

std::vector<DetectedBoard> LocalService::DetectBoards() { return oam::DetectBoards(); }

BoardSetChange LocalService::AddDetectedBoards(const std::optional<std::string>& name) {
    // Why a board is not added, the service tells in alerts of this source.
    Listen([](const Alert& alert) { return alert.source == "AddDetectedBoard"; });
    (void)oam::DetectBoards();
    BoardSetChange change = oam::AddDetectedBoards(name);
    ReportAlerts();
    return change;
}

std::vector<std::string> LocalService::BoardNames() { return oam::BoardNames(); }

std::vector<BoardFacts> LocalService::Boards() { return ReadBoards(); }

std::string LocalService::RequireBoard(const std::string& name) { return oam::RequireBoard(name); }

BoardFacts LocalService::Board(const std::string& name) {
    return ReadBoardFacts(oam::RequireBoard(name)).value();
}

Answer LocalService::LookUpBoard(const BoardIdentity& identity) {
    return oam::LookUpBoard(identity);
}

int LocalService::BoardStatus(const std::string& board, unsigned selector) {
    return oam::BoardStatus(board, selector);
}

void LocalService::SendBuffer(const std::string& board, const std::string& bytes) {
    oam::SendBuffer(board, bytes);
}

std::unique_ptr<Operations> LocalService::Operate(OperationKind kind) {
    return std::make_unique<LocalOperations>(*this, kind);
}

TransferFile LocalService::ExportConfiguration(const std::string& file) {
    return oam::ExportConfiguration(file);
}

TransferFile LocalService::ImportConfiguration(const std::string& file) {
    TransferFile judged = JudgeImport(file);
    if (!judged.findings.empty()) return judged;
    // An import stops every board first; here none was started, and each would complain.
    inbox().Listen([](const Alert& alert) {
        return alert.severity != OAM_INFORMATION && alert.code != OAMEVN_STOPBOARD_DONE;
    });
    oam::ImportConfiguration(file);
    return judged;
}

std::vector<ModuleFacts> LocalService::Modules() { return LoadedModules(); }

std::string LocalService::CodeName(unsigned code) {
    const char* const name = _oamGetText(code);
    return name ? name : "";
}

std::unique_ptr<AlertStream> LocalService::Watch(std::optional<std::uint64_t> after) {
    if (after)
        throw Failure("alerts are kept by the daemon, and none serves " + place_.Directory(),
                      "start oamd, or leave out --after", kNoDaemon);
    return std::make_unique<LocalAlerts>(*this);
}

void LocalService::Listen(AlertInbox::Wanted wanted) {
    inbox().Listen([wanted = std::move(wanted)](const Alert& alert) {
        return alert.severity != OAM_INFORMATION || wanted(alert);
    });
}

std::optional<Alert> LocalService::Wait(const AlertInbox::Deadline& deadline) {
    return inbox().Wait(deadline, interruption_);
}

void LocalService::ReportAlerts() {
    while (const auto alert = inbox().Take()) Report(*alert);
    if (const size_t lost = inbox().TakeLost())
        console_.Note(std::to_string(lost) + " alerts came too fast and are lost");
}

void LocalService::Report(const Alert& alert) { console_.Remark(alert); }

void LocalService::FailStart(unsigned code, time_t before) {
    const auto lines = StartupErrors(place_.Path(kStartupLog), before);
    for (const std::string& line : lines) console_.Note("start-up log: " + Shown(line));
    if (lines.empty()) ReportAlerts();
    const Failure failure(code, "the service does not start", StartAdvice(code));
    (void)_oamExit();
    (void)_oamAlertRegisterCallback(nullptr);
    throw failure;
}

}  // namespace oam
