// Finding a board by one of its identities.
#pragma once

#include <string>
#include <variant>

#include "text_answer.h"

namespace oam {

struct ByNumber {
    unsigned number;
};
struct ByDriver {
    std::string driverName;
    std::string driverBoardId;
};
struct ByBusSlot {
    unsigned bus;
    unsigned slot;
};
struct ByShelfSlot {
    unsigned shelf;
    unsigned slot;
};
struct ByIoAddress {
    unsigned address;
};
struct BySerialNumber {
    std::string serialNumber;
};
// The first of its boards, in name order.
struct ByProduct {
    std::string product;
};
struct ByMacAddress {
    std::string address;
};
using BoardIdentity = std::variant<ByNumber, ByDriver, ByBusSlot, ByShelfSlot, ByIoAddress,
                                   BySerialNumber, ByProduct, ByMacAddress>;

// The board's name.
Answer LookUpBoard(const BoardIdentity& identity);

}  // namespace oam
