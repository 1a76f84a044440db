// The board queries in one form: what was answered, with the result code beside it.
#pragma once

#include <array>
#include <ostream>
#include <string>
#include <vector>

#include "support/objects.h"

namespace oam::test {

// What an output holds that the service has not written.
constexpr unsigned kUntouched = 0xA5A5A5A5;

struct Numbers {
    unsigned code = 0;
    unsigned first = kUntouched;
    unsigned second = kUntouched;
    bool operator==(const Numbers&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Numbers& numbers);
inline Numbers Are(unsigned first, unsigned second = kUntouched) {
    return {OAM_SUCCESS, first, second};
}
inline Numbers NoNumbers(unsigned code) { return {code, kUntouched, kUntouched}; }

// `ask` takes a buffer and its size.
template <class Ask>
Answer TextFrom(Ask ask) {
    std::array<char, 512> buffer{};
    const unsigned code = ask(buffer.data(), static_cast<unsigned>(buffer.size()));
    return {code, code == OAM_SUCCESS ? buffer.data() : ""};
}

// Every board's name, in the order of the table.
std::vector<std::string> BoardNames();

Answer ByNumber(unsigned number);
Answer ByDriverIDs(const std::string& driver, const std::string& id);
Answer ByBusSlot(unsigned bus, unsigned slot);
Answer ByShelfSlot(unsigned shelf, unsigned slot);
Answer ByIOAddress(unsigned address);
Answer BySerialNumber(const std::string& serial);
Answer ByProduct(const std::string& product);
Answer ByMACAddress(const std::string& mac);

Numbers NumberOf(const std::string& board);
Numbers BusSlotOf(const std::string& board);
Numbers ShelfSlotOf(const std::string& board);
Numbers IOAddressOf(const std::string& board);
Numbers AutoStartOf(const std::string& board);
Numbers AutoStopOf(const std::string& board);
Answer SerialNumberOf(const std::string& board);
Answer ProductOf(const std::string& board);
Answer MACAddressOf(const std::string& board, unsigned index);
// "<driver name>|<driver board id>"
Answer DriverIDsOf(const std::string& board);

// The texts at index 0 to 4, 7 and the highest there is.
std::vector<std::string> MACAddressesOf(const std::string& board);
// The keywords behind them.
constexpr const char* kMacCount = "NetworkInterface.Ethernet.Count";
std::string MacKeyword(int index);

oam_result SetMACAddresses(const std::string& board, const std::vector<std::string>& texts);

}  // namespace oam::test
