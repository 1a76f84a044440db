// One life of the plug-in, from Init to Exit: its parts, and what each entry does with them.
//
// A thread that is in an entry co-owns the simulation, so Exit frees nothing under a worker that is
// still busy; End only makes it come back soon.
//
// Locks. Every part has a small lock of its own, held for a few lines. No lock of the plug-in is
// held while the service is called: the service calls the plug-in with its manager or table lock
// held, so a thread that waited for them with a lock of ours could wait for ever. For the same
// reason AlertReceive, which any thread may be in, never calls the service.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "chassis.h"
#include "configured_boards.h"
#include "detected_boards.h"
#include "kit/handle_map.h"
#include "oam/message.h"
#include "sensor_monitor.h"
#include "settings.h"

namespace oam::sim {

// An object as it was opened: a pending new name is not its name yet. An unknown handle is a
// board's that nobody writes.
struct OpenedObject {
    std::string name{};
    bool isPlugIn = false;
    bool isWritable = false;
};

class Simulation {
  public:
    // The name of the plug-in's own object, which is its file's.
    explicit Simulation(std::string objectName) : objectName_(std::move(objectName)) {}

    oam_result Begin();
    void End();
    void ReceiveAlert(const oam_msg_tag* message);
    void DetectBoards();

    oam_result CreateBoard(const std::string& name, const std::string& product);
    oam_result DestroyBoard(const std::string& name);
    oam_result OpenObject(unsigned long handle, unsigned int mode);
    oam_result CloseObject(unsigned long handle);
    oam_result SetKeyword(unsigned long handle, const std::string& keyword, std::string_view value);
    oam_result GetKeyword(unsigned long handle, const std::string& keyword, char* buffer,
                          unsigned int size);
    oam_result GetQualifier(unsigned long handle, const std::string& keyword,
                            const std::string& qualifier, char* buffer, unsigned int size);

    oam_result Operate(Operation operation, const std::string& board);
    oam_result SendBuffer(const std::string& board, std::string_view command);
    oam_result GetBoardStatus(const std::string& board, unsigned int selector, int* status);

  private:
    std::shared_ptr<const Settings> CurrentSettings() const;
    void TakeSettings(unsigned long handle);
    void TellRepairs(const std::vector<std::string>& repairs) const;
    void LoadChassis();
    void RememberStoredBoards();
    oam_result CloseBoard(unsigned long handle, const std::string& name);
    oam_result Locate(const std::string& board, std::shared_ptr<SimulatedBoard>* found);

    const std::string objectName_;
    mutable std::mutex settingsLock_;
    std::shared_ptr<const Settings> settings_ = std::make_shared<Settings>();
    const std::shared_ptr<Chassis> chassis_ = std::make_shared<Chassis>();
    ConfiguredBoards configured_;
    DetectedBoards detected_;
    kit::HandleMap<OpenedObject> handles_;
    SensorMonitor monitor_;
};

}  // namespace oam::sim
