// Clients that come and go, and the names of codes.
#include "caller.h"
#include "oam/entry.h"
#include "words.h"

namespace oam::torture {

namespace {

void hello(Caller& caller) {
    caller.Call("_oamHello", {OAM_SUCCESS}, [&] {
        _oamHello(caller.Board().c_str());
        return 0u;
    });
}

void debugOutput(Caller& caller) {
    caller.Call("DebugOutput", {OAM_SUCCESS}, [&] {
        DebugOutput("%s %u\n", "text", caller.Chance().Any());
        return 0u;
    });
}

void clientInit(Caller& caller) {
    caller.Call("_oamClientInit", {OAM_SUCCESS},
                [&] { return unsigned{_oamClientInit(caller.Client())}; });
}

void clientExit(Caller& caller) {
    caller.Call("_oamClientExit", {OAM_SUCCESS},
                [&] { return unsigned{_oamClientExit(caller.Client())}; });
    caller.ForgetClients();
}

void getText(Caller& caller) {
    static constexpr unsigned kCodes[] = {OAMERR_NOT_FOUND, OAMEVN_RENAMED, 0x50000001,
                                          0x50010001,       0x50020001,     12345};
    caller.Call("_oamGetText", {OAM_SUCCESS}, [&] {
        const unsigned code = caller.Chance().OneOf(kCodes);
        const char* text = _oamGetText(code);
        // Modules come and go with an import; the service's own names stay.
        const bool isOwn = code == OAMERR_NOT_FOUND || code == OAMEVN_RENAMED;
        return text == nullptr && isOwn ? 1u : 0u;
    });
}

}  // namespace

std::vector<Row> AttachRows() {
    return {{"_oamHello", 1, &hello},
            {"DebugOutput", 1, &debugOutput},
            {"_oamClientInit", 2, &clientInit},
            {"_oamClientExit", 4, &clientExit},
            {"_oamGetText", 4, &getText}};
}

const std::vector<Row>& AllRows() {
    // Never freed: a thread that the service detached may have read it last, and has no end that
    // this process could wait for.
    static const auto& kRows = *[] {
        auto* all = new std::vector<Row>;
        for (auto* family : {&AttachRows, &AlertRows, &ObjectRows, &DatabaseRows,
                             &ConfigurationRows, &OperationRows, &QueryRows, &ShadowRows}) {
            for (const Row& row : family()) all->push_back(row);
        }
        return all;
    }();
    return kRows;
}

}  // namespace oam::torture
