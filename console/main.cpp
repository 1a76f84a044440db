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

// Before any thread, so that every thread leaves them to the one that waits.
sigset_t blockEnds() {
    signal(SIGPIPE, SIG_IGN);
    sigset_t ends;
    sigemptyset(&ends);
    sigaddset(&ends, SIGINT);
    sigaddset(&ends, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &ends, nullptr);
    return ends;
}

void run(const Settings& settings, const sigset_t& ends) {
    const auto place = Installation::Locate(settings.directory);
    const std::string socket =
        settings.socketPath.empty() ? wire::SocketPath(place.Directory()) : settings.socketPath;
    Gateway gateway(settings, socket);
    const TokenFile file(settings.tokenFile, gateway.Token());
    std::cout << "oam-console serves " << place.Directory() << " at " << gateway.Address() << '\n';
    if (!gateway.Token().empty())
        std::cout << "enter at " << gateway.Address() << "#token=" << gateway.Token() << '\n';
    std::cout.flush();
    std::thread waiter([&] {
        int which = 0;
        sigwait(&ends, &which);
        gateway.Stop();
    });
    gateway.Serve();
    // Also when it ended by itself.
    pthread_kill(waiter.native_handle(), SIGTERM);
    waiter.join();
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
    const sigset_t ends = blockEnds();
    try {
        run(*settings, ends);
    } catch (const std::exception& error) {
        std::cerr << "oam-console: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
