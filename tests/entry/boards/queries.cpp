#include "queries.h"

#include <gtest/gtest.h>

#include <ios>

namespace oam::test {

namespace {

// `ask` takes the output.
template <class Ask>
Numbers oneFrom(Ask ask) {
    Numbers numbers;
    numbers.code = ask(&numbers.first);
    return numbers;
}

template <class Ask>
Numbers twoFrom(Ask ask) {
    Numbers numbers;
    numbers.code = ask(&numbers.first, &numbers.second);
    return numbers;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Numbers& numbers) {
    return out << "0x" << std::hex << numbers.code << std::dec << ": " << numbers.first << ", "
               << numbers.second;
}

std::vector<std::string> BoardNames() {
    std::vector<std::string> names;
    for (int index = 0;; ++index) {
        const Answer answer = TextFrom(
            [=](char* buffer, unsigned size) { return _oamBoardEnum(index, buffer, size); });
        if (answer.code == OAMERR_NOT_FOUND) return names;
        EXPECT_EQ(answer.code, OAM_SUCCESS) << "at index " << index;
        if (answer.code != OAM_SUCCESS) return names;
        names.push_back(answer.text);
    }
}

Answer ByNumber(unsigned number) {
    return TextFrom(
        [=](char* buffer, unsigned size) { return _oamBoardLookupByNumber(number, buffer, size); });
}

Answer ByDriverIDs(const std::string& driver, const std::string& id) {
    return TextFrom([&](char* buffer, unsigned size) {
        return _oamBoardLookupByDriverIDs(driver.c_str(), id.c_str(), buffer, size);
    });
}

Answer ByBusSlot(unsigned bus, unsigned slot) {
    return TextFrom([=](char* buffer, unsigned size) {
        return _oamBoardLookupByBusSlot(bus, slot, buffer, size);
    });
}

Answer ByShelfSlot(unsigned shelf, unsigned slot) {
    return TextFrom([=](char* buffer, unsigned size) {
        return _oamBoardLookupByShelfSlot(shelf, slot, buffer, size);
    });
}

Answer ByIOAddress(unsigned address) {
    return TextFrom([=](char* buffer, unsigned size) {
        return _oamBoardLookupByIOAddress(address, buffer, size);
    });
}

Answer BySerialNumber(const std::string& serial) {
    return TextFrom([&](char* buffer, unsigned size) {
        return _oamBoardLookupBySerialNumber(serial.c_str(), buffer, size);
    });
}

Answer ByProduct(const std::string& product) {
    return TextFrom([&](char* buffer, unsigned size) {
        return _oamBoardLookupByProduct(product.c_str(), buffer, size);
    });
}

Answer ByMACAddress(const std::string& mac) {
    return TextFrom([&](char* buffer, unsigned size) {
        return _oamBoardLookupByMACAddress(mac.c_str(), buffer, size);
    });
}

Numbers NumberOf(const std::string& board) {
    return oneFrom([&](unsigned* out) { return _oamBoardGetNumber(board.c_str(), out); });
}

Numbers BusSlotOf(const std::string& board) {
    return twoFrom([&](unsigned* bus, unsigned* slot) {
        return _oamBoardGetBusSlot(board.c_str(), bus, slot);
    });
}

Numbers ShelfSlotOf(const std::string& board) {
    return twoFrom([&](unsigned* shelf, unsigned* slot) {
        return _oamBoardGetShelfSlot(board.c_str(), shelf, slot);
    });
}

Numbers IOAddressOf(const std::string& board) {
    return oneFrom([&](unsigned* out) { return _oamBoardGetIOAddress(board.c_str(), out); });
}

Numbers AutoStartOf(const std::string& board) {
    return oneFrom([&](unsigned* out) { return _oamBoardGetAutoStartEnabled(board.c_str(), out); });
}

Numbers AutoStopOf(const std::string& board) {
    return oneFrom([&](unsigned* out) { return _oamBoardGetAutoStopEnabled(board.c_str(), out); });
}

Answer SerialNumberOf(const std::string& board) {
    return TextFrom([&](char* buffer, unsigned size) {
        return _oamBoardGetSerialNumber(board.c_str(), buffer, size);
    });
}

Answer ProductOf(const std::string& board) {
    return TextFrom([&](char* buffer, unsigned size) {
        return _oamBoardGetProduct(board.c_str(), buffer, size);
    });
}

Answer MACAddressOf(const std::string& board, unsigned index) {
    return TextFrom([&](char* buffer, unsigned size) {
        return _oamBoardGetMACAddress(board.c_str(), buffer, size, index);
    });
}

std::vector<std::string> MACAddressesOf(const std::string& board) {
    std::vector<std::string> texts;
    for (unsigned index : {0u, 1u, 2u, 3u, 4u, 7u, 0xFFFFFFFFu}) {
        const Answer text = MACAddressOf(board, index);
        EXPECT_EQ(text.code, OAM_SUCCESS) << index;
        texts.push_back(text.text);
    }
    return texts;
}

std::string MacKeyword(int index) {
    return "NetworkInterface.Ethernet[" + std::to_string(index) + "].MAC_Address";
}

Answer DriverIDsOf(const std::string& board) {
    std::array<char, 512> driver{};
    std::array<char, 512> id{};
    const unsigned code =
        _oamBoardGetDriverIDs(board.c_str(), driver.data(), driver.size(), id.data(), id.size());
    if (code != OAM_SUCCESS) return Fails(code);
    return Is(std::string(driver.data()) + "|" + id.data());
}

oam_result SetMACAddresses(const std::string& board, const std::vector<std::string>& texts) {
    std::vector<std::array<char, OAM_MAC_TEXT_SIZE>> slots(texts.size());
    for (size_t i = 0; i < texts.size(); ++i) {
        EXPECT_LT(texts[i].size(), slots[i].size());
        texts[i].copy(slots[i].data(), slots[i].size() - 1);
    }
    return _oamBoardSetMACAddress(board.c_str(),
                                  reinterpret_cast<const char(*)[OAM_MAC_TEXT_SIZE]>(slots.data()),
                                  static_cast<unsigned>(slots.size()));
}

}  // namespace oam::test
