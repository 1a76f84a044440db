#include "remote/remote_service.h"

#include <fstream>

#include "console.h"
#include "file_content.h"
#include "foreign_text.h"
#include "remote/host_channel.h"
#include "remote/remote_alert.h"
#include "remote/remote_alerts.h"
#include "remote/remote_daemon.h"
#include "remote/remote_operations.h"
#include "remote/stubs.h"
#include "wire/daemon_channel.h"

namespace oam {
namespace {

using google::protobuf::RepeatedPtrField;

std::vector<std::string> textsOf(const RepeatedPtrField<std::string>& texts) {
    return {texts.begin(), texts.end()};
}

KeywordFacts factsOf(const v1::Keyword& keyword) {
    return {keyword.name(), {keyword.code(), keyword.value()}, {}};
}

BoardFacts factsOf(const v1::Board& board) {
    BoardFacts facts;
    facts.name = board.name();
    facts.number = board.number();
    facts.product = board.product();
    facts.driverName = board.driver_name();
    facts.driverBoardId = board.driver_board_id();
    facts.busSlot = {board.bus_slot().bus(), board.bus_slot().slot()};
    if (board.has_shelf_slot())
        facts.shelfSlot = BoardPlace{board.shelf_slot().shelf(), board.shelf_slot().slot()};
    facts.ioAddress = board.io_address();
    facts.serialNumber = board.serial_number();
    facts.macAddresses = textsOf(board.mac_addresses());
    facts.autoStart = board.auto_start();
    facts.autoStop = board.auto_stop();
    return facts;
}

struct SetKey {
    v1::LookUpBoardRequest& request;

    void operator()(const ByNumber& by) const { request.set_number(by.number); }
    void operator()(const ByDriver& by) const {
        request.mutable_driver_ids()->set_driver_name(by.driverName);
        request.mutable_driver_ids()->set_driver_board_id(by.driverBoardId);
    }
    void operator()(const ByBusSlot& by) const {
        request.mutable_bus_slot()->set_bus(by.bus);
        request.mutable_bus_slot()->set_slot(by.slot);
    }
    void operator()(const ByShelfSlot& by) const {
        request.mutable_shelf_slot()->set_shelf(by.shelf);
        request.mutable_shelf_slot()->set_slot(by.slot);
    }
    void operator()(const ByIoAddress& by) const { request.set_io_address(by.address); }
    void operator()(const BySerialNumber& by) const { request.set_serial_number(by.serialNumber); }
    void operator()(const ByProduct& by) const { request.set_product(by.product); }
    void operator()(const ByMacAddress& by) const { request.set_mac_address(by.address); }
};

class RemoteService : public Service {
  public:
    RemoteService(const std::shared_ptr<grpc::Channel>& channel, Console& console,
                  const Interruption& interruption)
        : stubs_(channel), console_(console), interruption_(interruption) {}

    Daemon* AsDaemon() override { return &daemon_; }

    std::string Greet() {
        // A daemon that is alive answers this at once, whatever its plug-ins do.
        constexpr auto kPatience = std::chrono::seconds(5);
        grpc::ClientContext context;
        context.set_deadline(std::chrono::system_clock::now() + kPatience);
        v1::HostInfo info;
        const grpc::Status status = stubs_.host->GetHost(&context, v1::GetHostRequest(), &info);
        if (!status.ok()) throw FailureOf(status);
        return "oamd, process " + std::to_string(info.process());
    }

    std::vector<std::string> ObjectNames() override {
        return textsOf(
            Ask(*stubs_.objects, &v1::Objects::Stub::ListObjects, v1::ListObjectsRequest())
                .names());
    }

    std::vector<KeywordFacts> ReadObject(const std::string& name,
                                         const std::vector<std::string>& keywords) override {
        return ReadQualifier(name, keywords, "");
    }

    std::vector<KeywordFacts> ReadQualifier(const std::string& name,
                                            const std::vector<std::string>& keywords,
                                            const std::string& qualifier) override {
        v1::ReadObjectRequest request;
        request.set_name(name);
        request.set_qualifier(qualifier);
        for (const std::string& keyword : keywords) request.add_keywords(keyword);
        std::vector<KeywordFacts> facts;
        const auto answer = Ask(*stubs_.objects, &v1::Objects::Stub::ReadObject, request);
        for (const auto& keyword : answer.keywords()) {
            facts.push_back(factsOf(keyword));
            Learn(keyword.code(), keyword.code_name());
        }
        return facts;
    }

    std::vector<KeywordFacts> DescribeObject(const std::string& name,
                                             const std::vector<std::string>& keywords) override {
        v1::DescribeObjectRequest request;
        request.set_name(name);
        for (const std::string& keyword : keywords) request.add_keywords(keyword);
        std::vector<KeywordFacts> facts;
        const auto answer = Ask(*stubs_.objects, &v1::Objects::Stub::DescribeObject, request);
        for (const auto& description : answer.descriptions()) {
            facts.push_back(factsOf(description.keyword()));
            Learn(description.keyword().code(), description.keyword().code_name());
            for (const auto& qualifier : description.qualifiers())
                facts.back().qualifiers[qualifier.name()] = qualifier.value();
        }
        return facts;
    }

    void ChangeObject(const std::string& name, const std::vector<Assignment>& changes) override {
        v1::ChangeObjectRequest request;
        request.set_name(name);
        for (const Assignment& change : changes) {
            auto* const told = request.add_changes();
            told->set_keyword(change.keyword);
            told->set_value(change.value);
        }
        (void)Ask(*stubs_.objects, &v1::Objects::Stub::ChangeObject, request);
    }

    std::string CreateBoard(const std::string& product) override {
        v1::CreateBoardRequest request;
        request.set_product(product);
        return Ask(*stubs_.objects, &v1::Objects::Stub::CreateBoard, request).name();
    }

    BoardSetChange DeleteBoards(const std::optional<std::string>& name) override {
        v1::DeleteBoardRequest request;
        if (name)
            request.set_name(*name);
        else
            request.set_all_boards(true);
        const auto answer = Ask(*stubs_.objects, &v1::Objects::Stub::DeleteBoard, request);
        Learn(answer.code(), answer.code_name());
        return {textsOf(answer.deleted()), answer.code()};
    }

    std::vector<DetectedBoard> DetectBoards() override {
        const auto answer =
            Ask(*stubs_.boards, &v1::Boards::Stub::DetectBoards, v1::DetectBoardsRequest());
        std::vector<DetectedBoard> boards;
        for (const auto& board : answer.boards())
            boards.push_back({board.name(), board.product(), board.bus_slot().bus(),
                              board.bus_slot().slot(), board.configured_as()});
        return boards;
    }

    BoardSetChange AddDetectedBoards(const std::optional<std::string>& name) override {
        v1::AddDetectedBoardRequest request;
        if (name)
            request.set_name(*name);
        else
            request.set_all(true);
        const auto answer = Ask(*stubs_.boards, &v1::Boards::Stub::AddDetectedBoard, request);
        Learn(answer.code(), answer.code_name());
        for (const auto& remark : answer.remarks()) console_.Remark(AlertOf(remark));
        return {textsOf(answer.added()), answer.code()};
    }

    std::vector<std::string> BoardNames() override {
        std::vector<std::string> names;
        for (const BoardFacts& board : Boards()) names.push_back(board.name);
        return names;
    }

    std::vector<BoardFacts> Boards() override {
        const auto answer =
            Ask(*stubs_.boards, &v1::Boards::Stub::ListBoards, v1::ListBoardsRequest());
        std::vector<BoardFacts> boards;
        for (const auto& board : answer.boards()) boards.push_back(factsOf(board));
        return boards;
    }

    std::string RequireBoard(const std::string& name) override { return Board(name).name; }

    BoardFacts Board(const std::string& name) override {
        v1::GetBoardRequest request;
        request.set_name(name);
        return factsOf(Ask(*stubs_.boards, &v1::Boards::Stub::GetBoard, request));
    }

    Answer LookUpBoard(const BoardIdentity& identity) override {
        v1::LookUpBoardRequest request;
        std::visit(SetKey{request}, identity);
        try {
            return {OAM_SUCCESS,
                    Ask(*stubs_.boards, &v1::Boards::Stub::LookUpBoard, request).name()};
        } catch (const Failure& failure) {
            if (failure.Code() == 0) throw;
            return {failure.Code(), {}};
        }
    }

    int BoardStatus(const std::string& board, unsigned selector) override {
        v1::GetBoardStatusRequest request;
        request.set_board(board);
        request.set_selector(selector);
        return Ask(*stubs_.boards, &v1::Boards::Stub::GetBoardStatus, request).status();
    }

    void SendBuffer(const std::string& board, const std::string& bytes) override {
        v1::SendBufferRequest request;
        request.set_board(board);
        request.set_buffer(bytes);
        (void)Ask(*stubs_.boards, &v1::Boards::Stub::SendBuffer, request);
    }

    std::unique_ptr<Operations> Operate(OperationKind kind) override {
        return NewRemoteOperations(stubs_, kind, interruption_);
    }

    TransferFile ExportConfiguration(const std::string& file) override;
    TransferFile ImportConfiguration(const std::string& file) override;

    std::vector<ModuleFacts> Modules() override {
        const auto answer =
            Ask(*stubs_.host, &v1::Host::Stub::ListModules, v1::ListModulesRequest());
        std::vector<ModuleFacts> modules;
        for (const auto& module : answer.modules())
            modules.push_back({module.name(),
                               module.is_component() ? ObjectKind::kComponent : ObjectKind::kPlugin,
                               textsOf(module.products())});
        return modules;
    }

    std::string CodeName(unsigned code) override {
        v1::GetCodeNameRequest request;
        request.set_code(code);
        return Ask(*stubs_.host, &v1::Host::Stub::GetCodeName, request).name();
    }

    std::unique_ptr<AlertStream> Watch(std::optional<std::uint64_t> after) override {
        return NewRemoteAlerts(stubs_, after, interruption_);
    }

  private:
    // Codes of plug-ins have names that only the daemon knows.
    static void Learn(unsigned code, const std::string& name) {
        if (code != 0 && !name.empty()) NameCode(code, name);
    }

    Stubs stubs_;
    RemoteDaemon daemon_{stubs_};
    Console& console_;
    const Interruption& interruption_;
};

// Beside it first, so that an old file stays when the daemon goes away in the middle.
TransferFile RemoteService::ExportConfiguration(const std::string& file) {
    const std::string beside = file + ".part";
    grpc::ClientContext context;
    const auto stream = stubs_.configuration->Export(&context, v1::ExportRequest());
    std::ofstream out(beside, std::ios::binary | std::ios::trunc);
    for (v1::ExportResponse response; stream->Read(&response);)
        out.write(response.piece().data(), static_cast<std::streamsize>(response.piece().size()));
    out.close();
    const grpc::Status status = stream->Finish();
    if (!status.ok() || !out || std::rename(beside.c_str(), file.c_str()) != 0) {
        (void)std::remove(beside.c_str());
        if (!status.ok()) throw FailureOf(status);
        throw Failure(OAMERR_FILE_WRITE_ERROR, "cannot export to " + Quoted(file),
                      "look at the directory's owner and free space");
    }
    return JudgeTransferFile(file, [](const std::string&) { return false; });
}

TransferFile RemoteService::ImportConfiguration(const std::string& file) {
    const FileContent content = LoadFile(file);
    if (!content.error.empty()) throw Failure("cannot read " + Quoted(file) + ": " + content.error);
    grpc::ClientContext context;
    v1::ImportResponse response;
    const auto stream = stubs_.configuration->Import(&context, &response);
    constexpr std::size_t kPiece = 64 * 1024;
    for (std::size_t at = 0; at < content.content.size(); at += kPiece) {
        v1::ImportRequest request;
        request.set_piece(content.content.substr(at, kPiece));
        if (!stream->Write(request)) break;
    }
    (void)stream->WritesDone();
    const grpc::Status status = stream->Finish();
    if (!status.ok()) throw FailureOf(status);
    TransferFile judged;
    judged.objects = response.objects();
    for (const auto& finding : response.findings())
        judged.findings.push_back({file, {finding.line(), finding.column()}, finding.text()});
    return judged;
}

std::unique_ptr<Service> connected(const std::shared_ptr<grpc::Channel>& channel, Console& console,
                                   const Interruption& interruption, const std::string& host) {
    auto service = std::make_unique<RemoteService>(channel, console, interruption);
    const std::string where = service->Greet();
    console.Whisper("served by " + where + host);
    return service;
}

}  // namespace

std::unique_ptr<Service> ConnectRemoteService(int descriptor, Console& console,
                                              const Interruption& interruption) {
    return connected(wire::ChannelOver(descriptor), console, interruption, "");
}

std::unique_ptr<Service> ConnectRemoteHost(const RemoteHost& host, Console& console,
                                           const Interruption& interruption) {
    return connected(OpenHostChannel(host), console, interruption, " at " + host.address);
}

}  // namespace oam
