// What a recorder module and the test process agree on.
//
// The test process owns a RecorderBlock and publishes its address (hexadecimal) in the environment
// variable OAM_TEST_RECORDER; every module in the process looks it up at each call. A module is
// known by its file's name. It reports each call before it acts on it, then does what its script
// says: a hook when there is one, else the default told at the hook. Both sides are built by one
// compiler for one process, so the block holds ordinary C++ objects; it has no virtual operations.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "oam/message.h"

namespace oam::test {

constexpr const char* kRecorderVariable = "OAM_TEST_RECORDER";

struct RecordedCall {
    std::string file;                    // the module's file name
    std::string entry;                   // "Init", "SetKeyword", ...
    std::vector<std::string> arguments;  // texts and numbers, handles left out
    unsigned long handle = 0;            // of the entries that take one
    bool nullBuffer = false;             // a read that only asks whether the value exists
    std::thread::id thread;
};

struct DetectedBoard {
    std::string name;
    std::string product;
    std::string bus;
    std::string slot;
};

struct ModuleScript {
    // Answered as "Products.Count", "Products[i]", "DetectedBoards.Count" and
    // "DetectedBoards[i].Name", ".Product", ".Location.PCI.Bus", ".Location.PCI.Slot".
    std::vector<std::string> products;
    std::vector<DetectedBoard> detected;
    // Stored in every board that the default CreateBoard makes.
    std::vector<std::pair<std::string, std::string>> boardKeywords;
    // The default GetText knows these, with texts that live as long as the script.
    std::map<unsigned, const char*> texts;
    // The default GetBoardStatus answers this.
    int status = 0;

    using Code = unsigned;
    // Asked first, at every call of every entry. It may throw and call the service; a code that it
    // answers is the entry's (GetText then knows nothing).
    std::function<std::optional<Code>(const RecordedCall&)> first;
    std::function<Code(const char* file)> init;                               // 0
    std::function<Code()> exit;                                               // 0
    std::function<const char*(unsigned code)> getText;                        // from `texts`
    std::function<Code(const oam_msg_tag*)> alertReceive;                     // 0
    std::function<Code()> detectBoards;                                       // 0
    std::function<Code(const char* board, const char* product)> createBoard;  // `boardKeywords`
    std::function<Code(const char* board)> destroyBoard;                      // 0
    std::function<Code(unsigned long handle, unsigned mode)> openObject;      // 0
    std::function<Code(unsigned long handle)> closeObject;                    // 0
    // The lists above, then the database.
    std::function<Code(unsigned long handle, const char* keyword, const char* value)> setKeyword;
    std::function<Code(unsigned long handle, const char* keyword, char* buffer, unsigned size)>
        getKeyword;
    std::function<Code(unsigned long handle, const char* keyword, const char* qualifier,
                       char* buffer, unsigned size)>
        getQualifier;
    std::function<Code(const char* board)> startBoard;                                       // 0
    std::function<Code(const char* board)> stopBoard;                                        // 0
    std::function<Code(const char* board, unsigned testValue)> testBoard;                    // 0
    std::function<Code(const char* board, const void* buffer, unsigned length)> sendBuffer;  // 0
    std::function<Code(const char* board, unsigned selector, int* status)> getBoardStatus;
};

struct RecorderBlock {
    std::function<void(RecordedCall)> record;
    // A copy, so that a test may change the script while modules run.
    std::function<ModuleScript(const std::string& file)> script;
};

}  // namespace oam::test
