// The board room under test: its tables are one for the process, so the fixture starts and leaves
// them empty and the door for requests closed.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "base/flags.h"
#include "board/board_store.h"
#include "board/board_table.h"
#include "board/detected.h"
#include "board/product.h"
#include "board/workers.h"
#include "doors/board.h"
#include "doors/config_door.h"
#include "doors/frame_door.h"
#include "doors/room_test.h"
#include "doors/shadow_door.h"
#include "doors/system_door.h"
#include "noted_plugin.h"

namespace oam::test {

class BoardRoom : public RoomTest {
  protected:
    BoardRoom() { Forget(); }
    ~BoardRoom() override {
        closeForRequests();
        EXPECT_TRUE(WaitForThreads());
        doors.Reset();
        Forget();
    }

    // A loaded plug-in whose entries are noted as "p<number>.<entry>".
    template <int kNumber = 1>
    const CPlugin* AddPlugin(const std::string& file = "a.bpi") {
        EXPECT_EQ(plugins().Insert(file.c_str()), OAM_SUCCESS);
        EXPECT_EQ(plugins().Bind(file.c_str(), NotedPlugin<kNumber>::Entries()), OAM_SUCCESS);
        return plugins().Find(file.c_str());
    }
    // A configured board; `change` sets its values.
    void AddBoard(const std::string& name, unsigned number, const CPlugin* plugin,
                  const std::function<void(BoardValues&)>& change = {}) {
        BoardValues values;
        values.number = number;
        if (change) change(values);
        const TableGuard hold;
        ASSERT_EQ(boardTable().Insert(name.c_str(), plugin, std::move(values)), OAM_SUCCESS);
    }
    static std::vector<std::string> BoardNames() {
        const TableGuard hold;
        std::vector<std::string> names;
        for (int i = 0; i < boardTable().Count(); ++i) names.emplace_back(boardTable().At(i)->Name());
        return names;
    }
    static CBoardID& Board(const char* name) { return *boardTable().Find(name); }
    static unsigned StateOf(const char* name) {
        const TableGuard hold;
        return Board(name).state;
    }

  private:
    static void Forget() {
        {
            const TableGuard hold;
            boardTable().RemoveAll();
        }
        products().RemoveAll();
        plugins().RemoveAll();
        (void)detectedproductsInit();  // no plug-in: nothing is detected
        setUsingVxPlugin(false);
        FrameDoor::The().Reset();
        ConfigDoor::The().Reset();
        ShadowDoor::The().Reset();
    }
};

}  // namespace oam::test
