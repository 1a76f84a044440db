// Alert records that others hand to _oamAlertNotify, with the trace log, a component, a plug-in,
// the callback and a registered client as their receivers.
//
// The caller guarantees what oam/message.h says and nothing checks: a header of 24 bytes, and two
// offsets that lead to texts which end with a NUL in the caller's block. Inside of that everything
// is allowed: any code and severity, a `size` that is not the block's, texts that overlap each
// other, the header or share a place, any bytes in them. So offsets that lead out of the block are
// brought back into it, and its last byte is a NUL.
//
// Then the alert is delivered, whole and in order, and nothing beyond the block is read; a report
// goes to its file alone.
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "fuzz_target.h"
#include "oam/entry.h"
#include "running_service.h"

namespace {

using oam::fuzz::kClient;
using oam::fuzz::Require;
using oam::fuzz::RunningService;

constexpr unsigned kRunsPerLog = 4096;

class Block {
  public:
    Block(const std::uint8_t* data, std::size_t size) : size_(size), bytes_(new char[size]) {
        std::memcpy(bytes_.get(), data, size);
        bytes_[size - 1] = '\0';
        for (std::size_t field :
             {offsetof(oam_msg_tag, sourceOffset), offsetof(oam_msg_tag, textOffset)}) {
            std::uint32_t offset;
            std::memcpy(&offset, bytes_.get() + field, sizeof offset);
            offset %= static_cast<std::uint32_t>(size);
            std::memcpy(bytes_.get() + field, &offset, sizeof offset);
        }
    }

    const oam_msg_tag* Message() const {
        return reinterpret_cast<const oam_msg_tag*>(bytes_.get());
    }
    std::string Content() const { return {bytes_.get(), size_}; }

  private:
    std::size_t size_;
    // Of the exact size, so that a sanitizer sees a step beyond it.
    std::unique_ptr<char[]> bytes_;
};

// What the callback gets on this thread: the fuzzed alert, and what a receiver raises about it.
struct Delivery {
    unsigned long client;
    unsigned code;
    unsigned severity;
    std::string source;
    std::string text;
    bool operator==(const Delivery&) const = default;
};
thread_local std::vector<Delivery>* deliveries = nullptr;

unsigned receive(unsigned long client, const oam_msg_tag* message) {
    if (deliveries == nullptr) return 0;
    deliveries->push_back({client, message->code, message->severity, oamMessageSource(message),
                           oamMessageText(message)});
    return 0;
}

// Starts the trace log anew; the service keeps the one before.
void switchTrace(const char* onOrOff) {
    unsigned long handle;
    Require(_oamOpenObject(kClient, "Supervisor", &handle, OAM_OPEN_WRITE) == OAM_SUCCESS &&
                _oamSetKeyword(handle, "OammonLog", onOrOff) == OAM_SUCCESS &&
                _oamCloseObject_WOAN(handle) == OAM_SUCCESS,
            "the trace log can be switched");
}

void startListening() {
    (void)RunningService::Get();
    Require(_oamAlertRegisterCallback(&receive) == OAM_SUCCESS, "a callback is taken");
    Require(_oamAlertRegister(kClient) == OAM_SUCCESS, "a client is registered");
    switchTrace("Yes");
}

bool hasArrived(const std::vector<Delivery>& all, Delivery wanted) {
    std::vector<unsigned long> clients;
    for (const Delivery& delivery : all) {
        wanted.client = delivery.client;
        if (delivery == wanted) clients.push_back(delivery.client);
    }
    return clients == std::vector{OAM_INTERNAL_CLIENT, kClient};
}

// Takes the report away again.
std::string takeReport() {
    const auto path = RunningService::Get().Home().Path("oam/log/oam.rpt");
    std::ifstream stream(path, std::ios::binary);
    std::string report{std::istreambuf_iterator<char>(stream), {}};
    std::filesystem::remove(path);
    return report;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool listening = (startListening(), true);
    Require(listening, "the receivers are there");
    if (size <= sizeof(oam_msg_tag)) return -1;
    static unsigned runs = 0;
    if (++runs % kRunsPerLog == 0) {
        switchTrace("No");
        switchTrace("Yes");
    }

    const Block block(data, size);
    const std::string before = block.Content();
    const oam_msg_tag* message = block.Message();
    const Delivery wanted{0, message->code, message->severity, oamMessageSource(message),
                          oamMessageText(message)};
    std::vector<Delivery> arrived;
    deliveries = &arrived;
    const oam_result result = _oamAlertNotify(message);
    deliveries = nullptr;

    Require(result == OAM_SUCCESS, "no receiver has failed");
    Require(block.Content() == before, "the record is the caller's");
    if (wanted.code == OAMEVN_REPORT) {
        Require(arrived.empty(), "a report goes to its file alone");
        Require(takeReport() == "\nCONFIGURATION REPORT - " + wanted.source +
                                    "\n------------------------------\n" + wanted.text,
                "the report is in its file");
    } else {
        Require(hasArrived(arrived, wanted), "server and client have each heard it once");
    }
    return 0;
}
