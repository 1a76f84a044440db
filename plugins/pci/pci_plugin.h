// One life of the plug-in, from Init to Exit: its settings, what it found, and what each entry
// does.
//
// All state of the hardware is the kernel's; the plug-in keeps none of it, so nothing has to follow
// a renamed or deleted board. No lock of the plug-in is held while the service is called.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "configured_board.h"
#include "driver_binding.h"
#include "host_scan.h"
#include "kit/handle_map.h"
#include "settings.h"

namespace oam::pci {

class PciPlugin {
  public:
    // The name of the plug-in's own object, which is its file's.
    explicit PciPlugin(std::string objectName) : objectName_(std::move(objectName)) {}

    oam_result Begin();
    void End() { patience_.End(); }
    oam_result DetectBoards();

    // Under the manager lock.
    oam_result CreateBoard(const std::string& name);
    oam_result OpenObject(unsigned long handle, unsigned int mode);
    oam_result CloseObject(unsigned long handle);
    oam_result SetKeyword(unsigned long handle, const std::string& keyword, std::string_view value);
    oam_result GetKeyword(unsigned long handle, const std::string& keyword, char* buffer,
                          unsigned int size);
    oam_result GetQualifier(unsigned long handle, const std::string& keyword,
                            const std::string& qualifier, char* buffer, unsigned int size);

    // With no lock held, several at once.
    oam_result StartBoard(const std::string& name);
    oam_result StopBoard(const std::string& name);
    oam_result TestBoard(const std::string& name, unsigned int tests);
    oam_result SendBuffer(const std::string& name);
    oam_result GetBoardStatus(const std::string& name, unsigned int selector, int* status);

  private:
    struct OpenedObject {
        bool isPlugIn = false;
        bool isWritable = false;
    };

    // What one operation works with.
    struct Job {
        std::shared_ptr<const Settings> settings;
        ConfiguredBoard configured;
        PciBoard board;
    };

    std::shared_ptr<const Settings> CurrentSettings() const;
    void TakeSettings(unsigned long handle);
    void Tell(const std::vector<std::string>& troubles) const;
    std::shared_ptr<const std::vector<PciBoard>> Detected() const;
    std::optional<std::string> ComputedKeyword(const std::string& keyword) const;
    std::optional<std::string> ComputedQualifier(const std::string& keyword,
                                                 const std::string& qualifier) const;
    oam_result CloseBoard(unsigned long handle);
    oam_result ChangeSetting(unsigned long handle, const std::string& keyword,
                             std::string_view value);
    oam_result Prepare(const std::string& name, Job* job) const;
    DriverBinding Binding(const Job& job);

    const std::string objectName_;
    mutable std::mutex lock_;  // guards the two pointers, not what they point to
    std::shared_ptr<const Settings> settings_ = std::make_shared<const Settings>();
    std::shared_ptr<const std::vector<PciBoard>> detected_ =
        std::make_shared<const std::vector<PciBoard>>();
    kit::HandleMap<OpenedObject> handles_;
    Patience patience_;
};

}  // namespace oam::pci
