// The configuration database under test: one for the process, so the fixture starts and leaves it
// empty and stopped.
#pragma once

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "base/flags.h"
#include "config/mobjmgr.h"
#include "config/open_objects.h"
#include "doors/board_door.h"
#include "doors/config.h"
#include "doors/frame_door.h"
#include "doors/room_test.h"
#include "support/data_file.h"

namespace oam::test {

constexpr unsigned kReadWrite = OAM_OPEN_WRITE;
constexpr unsigned kProvide = unsigned{OAM_OPEN_WRITE} | unsigned{OAM_OPEN_PROVIDER};

class ConfigRoom : public RoomTest {
  protected:
    ConfigRoom() { Forget(); }
    ~ConfigRoom() override {
        doors.Reset();
        ConfigExit();
        Forget();
    }

    // The database without the rest of the service: _oamDb and (with the flag) _oam functions work.
    void Start() {
        ASSERT_EQ(ConfigInit(), OAM_SUCCESS);
        SetOamIsRunning(true);
        doors.TakeCalls();
    }

    static std::vector<std::string> Names(const CArrayPtrsToMObject& registry) {
        std::vector<std::string> names;
        for (int i = 0; i < registry.Count(); ++i) names.emplace_back(registry.At(i)->Name());
        return names;
    }
    // Name and value of each entry of an open object.
    static Entries EntriesOf(const KOR_CMObject& object) {
        Entries entries;
        for (int i = 0; i < object.Keywords().Count(); ++i) {
            const CKeyword* keyword = object.Keywords().At(i);
            entries.emplace_back(keyword->Name(), keyword->Value() != nullptr ? keyword->Value()
                                                                              : "(null)");
        }
        return entries;
    }

  private:
    static void Forget() {
        FrameDoor::The().Reset();
        BoardDoor::The().Reset();
    }
};

}  // namespace oam::test
