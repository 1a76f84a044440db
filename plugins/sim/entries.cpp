// The seventeen entries of the plug-in: nothing but the way in.
#include <string>
#include <string_view>

#include "kit/life.h"
#include "oam/plugin.h"
#include "sim_codes.h"
#include "simulation.h"

namespace {

using oam::sim::Operation;
using oam::sim::Simulation;
using Life = oam::kit::Life<Simulation>;

template <class Body>
unsigned int withSimulation(const Body& body) noexcept {
    return Life::Place().With(body);
}

}  // namespace

unsigned int Init(const char* fileName) { return Life::Place().Begin(std::string(fileName)); }

unsigned int Exit() { return Life::Place().End(); }

const char* GetText(unsigned int code) { return oam::sim::codeName(code); }

unsigned int AlertReceive(const oam_msg_tag* message) {
    return withSimulation([&](Simulation& simulation) {
        simulation.ReceiveAlert(message);
        return OAM_SUCCESS;
    });
}

unsigned int DetectBoards() {
    return withSimulation([](Simulation& simulation) {
        simulation.DetectBoards();
        return OAM_SUCCESS;
    });
}

unsigned int CreateBoard(const char* boardName, const char* productName) {
    return withSimulation(
        [&](Simulation& simulation) { return simulation.CreateBoard(boardName, productName); });
}

unsigned int DestroyBoard(const char* boardName) {
    return withSimulation(
        [&](Simulation& simulation) { return simulation.DestroyBoard(boardName); });
}

unsigned int OpenObject(unsigned long handle, unsigned int mode) {
    return withSimulation(
        [&](Simulation& simulation) { return simulation.OpenObject(handle, mode); });
}

unsigned int CloseObject(unsigned long handle) {
    return withSimulation([&](Simulation& simulation) { return simulation.CloseObject(handle); });
}

unsigned int SetKeyword(unsigned long handle, const char* keyword, const char* value) {
    if (keyword == nullptr || value == nullptr) return OAMERR_SET_BOARD_KEYWORD_FAIL;
    return withSimulation(
        [&](Simulation& simulation) { return simulation.SetKeyword(handle, keyword, value); });
}

unsigned int GetKeyword(unsigned long handle, const char* keyword, char* buffer,
                        unsigned int size) {
    if (keyword == nullptr) return OAMERR_NOT_FOUND;
    return withSimulation([&](Simulation& simulation) {
        return simulation.GetKeyword(handle, keyword, buffer, size);
    });
}

unsigned int GetQualifier(unsigned long handle, const char* keyword, const char* qualifier,
                          char* buffer, unsigned int size) {
    if (keyword == nullptr || qualifier == nullptr) return OAMERR_NOT_FOUND;
    return withSimulation([&](Simulation& simulation) {
        return simulation.GetQualifier(handle, keyword, qualifier, buffer, size);
    });
}

unsigned int StartBoard(const char* boardName) {
    return withSimulation(
        [&](Simulation& simulation) { return simulation.Operate(Operation::Start, boardName); });
}

unsigned int StopBoard(const char* boardName) {
    return withSimulation(
        [&](Simulation& simulation) { return simulation.Operate(Operation::Stop, boardName); });
}

// The board has one self-test, whatever the value selects.
unsigned int TestBoard(const char* boardName, unsigned int) {
    return withSimulation(
        [&](Simulation& simulation) { return simulation.Operate(Operation::Test, boardName); });
}

unsigned int SendBuffer(const char* boardName, const void* buffer, unsigned int length) {
    if (buffer == nullptr) return OAMERR_SEND_BUFFER_FAIL;
    return withSimulation([&](Simulation& simulation) {
        return simulation.SendBuffer(boardName, {static_cast<const char*>(buffer), length});
    });
}

unsigned int GetBoardStatus(const char* boardName, unsigned int selector, int* status) {
    return withSimulation([&](Simulation& simulation) {
        return simulation.GetBoardStatus(boardName, selector, status);
    });
}
