#include "board_identity.h"

namespace oam {
namespace {

struct Ask {
    char* buffer;
    unsigned size;

    oam_result operator()(const ByNumber& by) const {
        return _oamBoardLookupByNumber(by.number, buffer, size);
    }
    oam_result operator()(const ByDriver& by) const {
        return _oamBoardLookupByDriverIDs(by.driverName.c_str(), by.driverBoardId.c_str(), buffer,
                                          size);
    }
    oam_result operator()(const ByBusSlot& by) const {
        return _oamBoardLookupByBusSlot(by.bus, by.slot, buffer, size);
    }
    oam_result operator()(const ByShelfSlot& by) const {
        return _oamBoardLookupByShelfSlot(by.shelf, by.slot, buffer, size);
    }
    oam_result operator()(const ByIoAddress& by) const {
        return _oamBoardLookupByIOAddress(by.address, buffer, size);
    }
    oam_result operator()(const BySerialNumber& by) const {
        return _oamBoardLookupBySerialNumber(by.serialNumber.c_str(), buffer, size);
    }
    oam_result operator()(const ByProduct& by) const {
        return _oamBoardLookupByProduct(by.product.c_str(), buffer, size);
    }
    oam_result operator()(const ByMacAddress& by) const {
        return _oamBoardLookupByMACAddress(by.address.c_str(), buffer, size);
    }
};

}  // namespace

Answer LookUpBoard(const BoardIdentity& identity) {
    return AskText([&](char* buffer, unsigned size) {
        return unsigned{std::visit(Ask{buffer, size}, identity)};
    });
}

}  // namespace oam
