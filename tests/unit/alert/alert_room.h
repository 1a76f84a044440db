// The alert room under test: its state is one for the process, so the fixture brings it back to
// what it is at load.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "base/flags.h"
#include "doors/alert.h"
#include "doors/board_door.h"
#include "doors/frame_door.h"
#include "doors/room_test.h"
#include "oam/entry.h"
#include "support/log_text.h"

namespace oam::test {

// A finished record as a client hands it in.
class Message {
  public:
    Message(unsigned code, unsigned severity, const std::string& source, const std::string& text)
        : bytes_(sizeof(oam_msg_tag) + source.size() + text.size() + 2, '\0') {
        oam_msg_tag header{};
        header.size = static_cast<uint32_t>(bytes_.size());
        header.code = code;
        header.severity = severity;
        header.sourceOffset = sizeof header;
        header.textOffset = static_cast<uint32_t>(sizeof header + source.size() + 1);
        memcpy(bytes_.data(), &header, sizeof header);
        memcpy(bytes_.data() + header.sourceOffset, source.data(), source.size());
        memcpy(bytes_.data() + header.textOffset, text.data(), text.size());
    }
    const oam_msg_tag* Get() const { return reinterpret_cast<const oam_msg_tag*>(bytes_.data()); }
    oam_msg_tag* Change() { return reinterpret_cast<oam_msg_tag*>(bytes_.data()); }
    char* Text() { return bytes_.data() + Get()->textOffset; }

  private:
    std::vector<char> bytes_;
};

class AlertRoom : public RoomTest {
  protected:
    AlertRoom() { Forget(); }
    ~AlertRoom() override {
        (void)_oamAlertRegisterCallback(nullptr);
        AlertExit();
        (void)AlertLogFileEnd();
        Forget();
    }

    // The callback notes itself as "callback(client, text)"; what a test scripts for "callback" is
    // its answer.
    static unsigned NotedCallback(unsigned long client, const oam_msg_tag* message) {
        return Doors::The().NoteCall("callback", "callback(" + std::to_string(client) + ", " +
                                                     oamMessageText(message) + ")");
    }
    void InstallCallback() {
        ASSERT_EQ(_oamAlertRegisterCallback(&NotedCallback), OAM_SUCCESS);
    }

    oam_result Raise(unsigned code, unsigned severity, const std::string& source,
                     const std::string& text) {
        return _oamAlertNotify(Message(code, severity, source, text).Get());
    }
    oam_result Raise(const std::string& text) { return Raise(OAMEVN_ALERT, 0, "S", text); }

    std::string logPath = home.Path("oam/log/test.log");
    std::string Log() const { return WithoutStamps(home.Read("oam/log/test.log")); }
    void OpenLog() { ASSERT_EQ(AlertLogFileBeg(logPath.c_str()), OAM_SUCCESS); }

  private:
    static void Forget() {
        FrameDoor::The().Reset();
        BoardDoor::The().Reset();
    }
};

}  // namespace oam::test
