#include "bus_peer.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

namespace oam::bench {

namespace {

constexpr const char* kPath = "/bench";
constexpr const char* kInterface = "bench.Boards";

int answer(sd_bus_message* call, void*, sd_bus_error*) {
    const char* board = nullptr;
    const int read = sd_bus_message_read(call, "s", &board);
    if (read < 0) return read;
    const unsigned number =
        static_cast<unsigned>(std::atoi(board + std::strcspn(board, "0123456789")));
    return sd_bus_reply_method_return(call, "u", number);
}

const sd_bus_vtable kMethods[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("NumberOf", "s", "u", answer, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

}  // namespace

BusPeer::BusPeer() {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return;
    server_ = std::thread([this, end = ends[1]] { Serve(end); });
    sd_bus* bus = nullptr;
    if (sd_bus_new(&bus) < 0) return;
    if (sd_bus_set_fd(bus, ends[0], ends[0]) < 0 || sd_bus_set_anonymous(bus, 1) < 0 ||
        sd_bus_start(bus) < 0) {
        sd_bus_unref(bus);
        return;
    }
    client_ = bus;
}

BusPeer::~BusPeer() {
    ends_ = true;
    if (client_ != nullptr) sd_bus_flush_close_unref(client_);
    if (server_.joinable()) server_.join();
}

void BusPeer::Serve(int descriptor) {
    sd_bus* bus = nullptr;
    sd_id128_t id;
    if (sd_bus_new(&bus) < 0) return;
    if (sd_id128_randomize(&id) >= 0 && sd_bus_set_fd(bus, descriptor, descriptor) >= 0 &&
        sd_bus_set_server(bus, 1, id) >= 0 && sd_bus_set_anonymous(bus, 1) >= 0 &&
        sd_bus_add_object_vtable(bus, nullptr, kPath, kInterface, kMethods, nullptr) >= 0 &&
        sd_bus_start(bus) >= 0) {
        while (!ends_) {
            const int done = sd_bus_process(bus, nullptr);
            if (done < 0) break;
            if (done == 0 && sd_bus_wait(bus, 100000) < 0) break;
        }
    }
    sd_bus_flush_close_unref(bus);
}

bool BusPeer::NumberOf(const char* board, unsigned* number) {
    sd_bus_error error = SD_BUS_ERROR_NULL;
    sd_bus_message* reply = nullptr;
    const bool answered = sd_bus_call_method(client_, nullptr, kPath, kInterface, "NumberOf",
                                             &error, &reply, "s", board) >= 0 &&
                          sd_bus_message_read(reply, "u", number) >= 0;
    sd_bus_message_unref(reply);
    sd_bus_error_free(&error);
    return answered;
}

}  // namespace oam::bench
