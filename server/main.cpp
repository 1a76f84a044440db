// oamd, the OA&M service of a host.
#include "daemon/daemon.h"

int main(int argc, char** argv) {
    int status = 0;
    const auto settings = oam::server::ReadSettings(argc, argv, &status);
    return settings ? oam::server::RunDaemon(*settings) : status;
}
