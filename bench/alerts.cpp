// Alerts to ten callbacks, with and without the log, beside formatting, one write and ten calls.

#include <fcntl.h>
#include <glib-object.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "oam/entry.h"
#include "rows.h"
#include "site.h"
#include "stopwatch.h"

namespace oam::bench {

namespace {

constexpr Shape kShape{};
constexpr int kCallbacks = 10;  // the server's own, and nine clients
constexpr const char* kSource = "Board 00003";
constexpr const char* kText = "Port %d lost its signal after %d seconds";

unsigned received = 0;

unsigned int receive(unsigned long, const oam_msg_tag* message) {
    received += message->code != 0;
    return 0;
}

// As a plug-in raises an alert: the record on its stack.
struct Record {
    oam_msg_tag header{};
    char texts[256];

    Record(int port, int seconds) {
        header.code = OAMEVN_ALERT;
        header.severity = OAM_WARNING;
        header.sourceOffset = sizeof header;
        const size_t source = std::strlen(kSource) + 1;
        std::memcpy(texts, kSource, source);
        header.textOffset = static_cast<uint32_t>(sizeof header + source);
        const int length =
            std::snprintf(texts + source, sizeof texts - source, kText, port, seconds);
        header.size = header.textOffset + static_cast<uint32_t>(length) + 1;
    }
};

// Each time is a commit, so not more often than needed.
bool setLog(const char* value) {
    unsigned long handle;
    char now[8] = "";
    if (_oamOpenObject(1, "Supervisor", &handle, OAM_OPEN_READ) != OAM_SUCCESS) return false;
    (void)_oamGetKeyword(handle, "OammonLog", now, sizeof now);
    (void)_oamCloseObject(handle);
    if (std::strcmp(now, value) == 0) return true;
    if (_oamOpenObject(1, "Supervisor", &handle, OAM_OPEN_WRITE) != OAM_SUCCESS) return false;
    const bool set = _oamSetKeyword(handle, "OammonLog", value) == OAM_SUCCESS;
    return _oamCloseObject(handle) == OAM_SUCCESS && set;
}

template <class Work>
void timeEach(benchmark::State& state, Work work) {
    int i = 0;
    for (auto _ : state) work(i++ % 1000);
}

void ours(benchmark::State& state, bool withLog) {
    useSite(kShape);
    BENCH_CHECK(state, setLog(withLog ? "Yes" : "No"));
    (void)_oamAlertRegisterCallback(receive);
    for (unsigned long client = 1; client < kCallbacks; ++client) (void)_oamAlertRegister(client);
    const unsigned before = received;
    bool good = true;
    timeEach(state, [&](int i) {
        const Record record(i, i + 1);
        good = _oamAlertNotify(&record.header) == OAM_SUCCESS && good;
    });
    BENCH_CHECK(state, good && (received - before) % kCallbacks == 0);
    for (unsigned long client = 1; client < kCallbacks; ++client) (void)_oamAlertUnregister(client);
    (void)_oamAlertRegisterCallback(nullptr);
}

unsigned int (*volatile callback)(unsigned long, const oam_msg_tag*) = receive;

void limit(benchmark::State& state, bool withLog) {
    const std::string path = (scratchDirectory() / "limit.log").string();
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    BENCH_CHECK(state, file >= 0);
    bool good = true;
    timeEach(state, [&](int i) {
        const Record record(i, i + 1);
        if (withLog) {
            char line[512];
            const int length = std::snprintf(
                line, sizeof line, "  <%s - %s %s  Board %lu\"%s\">\n%s\n", "Fri Nov 20 23:25:29",
                "OAMEVN_ALERT", "WARNING", 3ul, kSource, oamMessageText(&record.header));
            good = write(file, line, static_cast<size_t>(length)) == length && good;
        }
        for (unsigned long client = 0; client < kCallbacks; ++client) {
            (void)callback(client, &record.header);
        }
    });
    close(file);
    BENCH_CHECK(state, good);
}

void spdlogPeer(benchmark::State& state) {
    const std::string path = (scratchDirectory() / "spdlog.log").string();
    auto log = spdlog::get("bench");
    if (log == nullptr) {
        log = spdlog::basic_logger_mt("bench", path, true);
        log->set_pattern("  <%a %b %d %H:%M:%S - %l %v");
        log->flush_on(spdlog::level::trace);
    }
    timeEach(state, [&](int i) {
        log->warn("Board {}\"{}\">\nPort {} lost its signal after {} seconds", 3, kSource, i,
                  i + 1);
        const Record record(i, i + 1);
        for (unsigned long client = 0; client < kCallbacks; ++client) {
            (void)callback(client, &record.header);
        }
    });
}

// GLib's way to tell ten receivers: a signal with ten handlers.
void onSignal(GObject*, gpointer record, gpointer) {
    (void)receive(0, static_cast<const oam_msg_tag*>(record));
}

void glibPeer(benchmark::State& state) {
    static GObject* object = nullptr;
    static guint signal = 0;
    if (object == nullptr) {
        signal = g_signal_new("bench-alert", G_TYPE_OBJECT, G_SIGNAL_RUN_LAST, 0, nullptr, nullptr,
                              nullptr, G_TYPE_NONE, 1, G_TYPE_POINTER);
        object = static_cast<GObject*>(g_object_new(G_TYPE_OBJECT, nullptr));
        for (int i = 0; i < kCallbacks; ++i) {
            g_signal_connect(object, "bench-alert", G_CALLBACK(onSignal), nullptr);
        }
    }
    timeEach(state, [&](int i) {
        Record record(i, i + 1);
        g_signal_emit(object, signal, 0, &record.header);
    });
}

}  // namespace

void addAlertRows() {
    addRow("alert-log", "alert with log and 10 callbacks", 1.12, 0.9)
        .Ours(Clock::kWhole, [](benchmark::State& state) { ours(state, true); })
        .Limit(Clock::kWhole, "vsnprintf+write+10 calls",
               [](benchmark::State& state) { limit(state, true); })
        .Peer(Clock::kWhole, "spdlog with flush", spdlogPeer);
    addRow("alert", "alert without log", 1.3)
        .Ours(Clock::kWhole, [](benchmark::State& state) { ours(state, false); })
        .Limit(Clock::kWhole, "vsnprintf+10 calls",
               [](benchmark::State& state) { limit(state, false); })
        .Peer(Clock::kWhole, "GLib signal", glibPeer);
}

}  // namespace oam::bench
