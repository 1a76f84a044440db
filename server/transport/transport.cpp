#include "transport/transport.h"

#include <grpcpp/ext/proto_server_reflection_plugin.h>
#include <grpcpp/health_check_service_interface.h>
#include <grpcpp/security/tls_certificate_provider.h>
#include <grpcpp/security/tls_credentials_options.h>
#include <grpcpp/server_posix.h>

#include <stdexcept>

#include "transport/request_counter.h"
#include "transport/tls_check.h"

namespace oam::server {
namespace {

// A request is a name, some values, at most a raw buffer or a piece of a configuration.
constexpr int kLargestMessage = 1 << 20;
constexpr int kStreamsOfOneConnection = 256;

std::shared_ptr<grpc::ServerCredentials> mutualTls(const TlsFiles& files) {
    using grpc::experimental::FileWatcherCertificateProvider;
    constexpr unsigned kSecondsBetweenLooks = 1;
    const auto provider = std::make_shared<FileWatcherCertificateProvider>(
        files.key, files.certificate, files.clientAuthorities, kSecondsBetweenLooks);
    grpc::experimental::TlsServerCredentialsOptions options(provider);
    options.watch_root_certs();
    options.watch_identity_key_cert_pairs();
    options.set_cert_request_type(GRPC_SSL_REQUEST_AND_REQUIRE_CLIENT_CERTIFICATE_AND_VERIFY);
    return grpc::experimental::TlsServerCredentials(options);
}

}  // namespace

Transport::Transport(const TransportSettings& settings, Callers& callers,
                     const std::vector<grpc::Service*>& services) {
    grpc::EnableDefaultHealthCheckService(true);
    grpc::reflection::InitProtoReflectionServerBuilderPlugin();
    grpc::ServerBuilder builder;
    builder.SetMaxReceiveMessageSize(kLargestMessage);
    builder.AddChannelArgument(GRPC_ARG_MAX_CONCURRENT_STREAMS, kStreamsOfOneConnection);
    // A remote client whose machine vanished is found out.
    builder.AddChannelArgument(GRPC_ARG_KEEPALIVE_TIME_MS, 30000);
    builder.AddChannelArgument(GRPC_ARG_KEEPALIVE_TIMEOUT_MS, 10000);
    if (settings.requests != nullptr) {
        std::vector<std::unique_ptr<grpc::experimental::ServerInterceptorFactoryInterface>> all;
        all.push_back(NewRequestCounter(*settings.requests));
        builder.experimental().SetInterceptorCreators(std::move(all));
    }
    for (grpc::Service* service : services) builder.RegisterService(service);
    if (!settings.tcpAddress.empty()) {
        CheckTlsFiles(settings.tls);
        builder.AddListeningPort(settings.tcpAddress, mutualTls(settings.tls), &port_);
    }
    server_ = builder.BuildAndStart();
    if (!server_ || (!settings.tcpAddress.empty() && port_ == 0))
        throw std::runtime_error("cannot listen at " + settings.tcpAddress);
    listener_ = std::make_unique<UnixListener>(
        settings.socketPath, settings.inheritedSocket, [this, &callers](int accepted) {
            const int descriptor = callers.Adopt(accepted);
            if (descriptor >= 0) grpc::AddInsecureChannelFromFd(server_.get(), descriptor);
        });
}

Transport::~Transport() { Shutdown(std::chrono::milliseconds(0)); }

void Transport::SetServing(bool isServing) {
    server_->GetHealthCheckService()->SetServingStatus(isServing);
}

void Transport::Shutdown(std::chrono::milliseconds grace) {
    listener_.reset();
    server_->Shutdown(std::chrono::system_clock::now() + grace);
}

}  // namespace oam::server
