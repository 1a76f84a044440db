#include "remote/host_channel.h"

#include <grpcpp/grpcpp.h>

#include "failure.h"
#include "file_content.h"

namespace oam {
namespace {

std::string pem(const std::string& path) {
    FileContent file = LoadFile(path);
    if (!file.error.empty())
        throw Failure("cannot read " + Quoted(path) + ": " + file.error, "", kFailed);
    return std::move(file.content);
}

}  // namespace

std::shared_ptr<grpc::Channel> OpenHostChannel(const RemoteHost& host) {
    grpc::SslCredentialsOptions options;
    options.pem_root_certs = pem(host.authorities);
    options.pem_private_key = pem(host.key);
    options.pem_cert_chain = pem(host.certificate);
    // No roots would mean the system's.
    if (options.pem_root_certs.empty())
        throw Failure(Quoted(host.authorities) + " is empty", "", kFailed);
    return grpc::CreateChannel(host.address, grpc::SslCredentials(options));
}

}  // namespace oam
