#include "serving_daemon.h"

#include <grpcpp/create_channel_posix.h>
#include <signal.h>

#include <future>

#include "daemon/daemon.h"
#include "fuzz_target.h"
#include "wire/local_socket.h"

namespace oam::fuzz {

namespace fs = std::filesystem;

ServingDaemon& ServingDaemon::Get() {
    static ServingDaemon daemon;
    return daemon;
}

ServingDaemon::ServingDaemon() {
    const fs::path module = SIM_PLUGIN_FILE;
    fs::create_symlink(module, home_.Path("lib") / module.filename());
    thread_ = std::thread([this] {
        server::Settings settings;
        settings.directory = home_.Path("");
        status_ = server::RunDaemon(settings);
    });
    Connect();
    // AddDetectedBoardRequest { all: true }
    const auto added = Ask("/oam.v1.Boards/AddDetectedBoard", "\x10\x01", std::chrono::minutes(1));
    Require(added.ok(), "the detected boards are configured");
    Attach();
}

ServingDaemon::~ServingDaemon() {
    attached_.TryCancel();
    events_->Finish().IgnoreError();
    // To the thread that waits for it: a fuzzer has a handler of its own for the process.
    pthread_kill(thread_.native_handle(), SIGTERM);
    thread_.join();
    Require(status_ == 0, "the daemon ends in good order");
}

void ServingDaemon::Connect() {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    for (;;) {
        Require(std::chrono::steady_clock::now() < limit, "the daemon serves");
        const auto descriptor = wire::Connect(wire::SocketPath(home_.Path("").string()));
        if (descriptor) {
            channel_ = grpc::CreateInsecureChannelFromFd("oamd", *descriptor);
            stub_ = std::make_unique<grpc::GenericStub>(channel_);
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

void ServingDaemon::Attach() {
    events_ = v1::Sessions::NewStub(channel_)->Attach(&attached_, v1::AttachRequest());
    v1::AttachEvent event;
    Require(events_->Read(&event) && !event.session().empty(), "a session begins");
    session_ = event.session();
}

grpc::Status ServingDaemon::Ask(const std::string& method, const std::string& bytes,
                                std::chrono::milliseconds limit, std::string* answer) {
    grpc::ClientContext context;
    context.set_deadline(std::chrono::system_clock::now() + limit);
    const grpc::Slice slice(bytes);
    const grpc::ByteBuffer request(&slice, 1);
    grpc::ByteBuffer response;
    std::promise<grpc::Status> ended;
    stub_->UnaryCall(&context, method, {}, &request, &response,
                     [&](grpc::Status status) { ended.set_value(std::move(status)); });
    const grpc::Status status = ended.get_future().get();
    grpc::Slice whole;
    if (status.ok() && answer != nullptr && response.DumpToSingleSlice(&whole).ok())
        answer->assign(reinterpret_cast<const char*>(whole.begin()), whole.size());
    return status;
}

}  // namespace oam::fuzz
