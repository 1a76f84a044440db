// oam-console: the page and the JSON interface of one installation's daemon.
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iostream>
#include <thread>

#include "failure.h"
#include "installation.h"
#include "listener/gateway.h"
#include "mirror/openapi.h"
#include "settings.h"
#include "wire/local_socket.h"

namespace oam::console {
namespace {

// A file that only this user may read, from its first moment on.
class TokenFile {
  public:
    TokenFile(const std::string& path, const std::string& token) : path_(path) {
        if (path_.empty() || token.empty()) return;
        (void)unlink(path_.c_str());
        const int file = open(path_.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0600);
        const std::string line = token + '\n';
        isOurs_ = file >= 0;
        if (file < 0 || write(file, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
            throw Failure("cannot write the token to " + Quoted(path_));
        close(file);
    }
    ~TokenFile() {
        if (isOurs_) (void)unlink(path_.c_str());
    }
    TokenFile(const TokenFile&) = delete;
    TokenFile& operator=(const TokenFile&) = delete;

  private:
    const std::string path_;
    bool isOurs_ = false;
};

// Before any thread, so that every thread leaves them to the one that waits. Without certificates
// there is nothing to read again, and the end of its terminal ends the gateway.
sigset_t blockSignals(bool hasTls) {
    signal(SIGPIPE, SIG_IGN);
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    if (hasTls) sigaddset(&signals, SIGHUP);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

void reload(Gateway* gateway) {
    try {
        gateway->ReloadCertificates();
        std::cerr << "oam-console: the certificates are read again\n";
    } catch (const std::exception& error) {
        std::cerr << "oam-console: the certificates stay as they were: " << error.what() << '\n';
    }
}

void serveUntilASignal(Gateway* gateway, const sigset_t& signals) {
    std::thread waiter([&] {
        for (int which = SIGHUP; which == SIGHUP;)
            if (sigwait(&signals, &which) == 0 && which == SIGHUP) reload(gateway);
        gateway->Stop();
    });
    gateway->Serve();
    // Also when it ended by itself.
    pthread_kill(waiter.native_handle(), SIGTERM);
    waiter.join();
}

void run(const Settings& settings, const sigset_t& signals) {
    const auto place = Installation::Locate(settings.directory);
    const std::string socket =
        settings.socketPath.empty() ? wire::SocketPath(place.Directory()) : settings.socketPath;
    Gateway gateway(settings, socket);
    const TokenFile file(settings.tokenFile, gateway.Token());
    std::cout << "oam-console serves " << place.Directory() << " at " << gateway.Address() << '\n';
    if (!gateway.Token().empty())
        std::cout << "enter at " << gateway.Address() << "#token=" << gateway.Token() << '\n';
    std::cout.flush();
    serveUntilASignal(&gateway, signals);
}

}  // namespace
}  // namespace oam::console

int main(int argc, char** argv) {
    using namespace oam::console;
    int status = 0;
    const auto settings = ReadSettings(argc, argv, &status);
    if (!settings) return status;
    if (settings->onlyDescribes) {
        std::cout << OpenApi().dump(1) << '\n';
        return 0;
    }
    const sigset_t signals = blockSignals(settings->HasTls());
    try {
        run(*settings, signals);
    } catch (const std::exception& error) {
        std::cerr << "oam-console: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
