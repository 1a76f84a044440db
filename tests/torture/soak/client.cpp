#include "client.h"

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <thread>

#include "configuration.h"
#include "oam/entry.h"

namespace oam::torture {
namespace {

constexpr unsigned long kFirstClient = 100;
constexpr std::size_t kMostOwnBoards = 4;
constexpr unsigned kValueSize = 1024;
constexpr int kImportAttempts = 200;

// The step that this thread's call is about, for the plug-in that is called within it.
thread_local Step* currentStep = nullptr;

void copyText(const std::string& text, char (&field)[64]) {
    std::snprintf(field, sizeof field, "%s", text.c_str());
}

unsigned makeMarks(const char* board, std::uint64_t stamp) {
    unsigned long handle = 0;
    constexpr unsigned kMode = OAM_OPEN_WRITE | OAM_OPEN_PROVIDER;
    if (const unsigned failed = _oamDbOpenObject(board, &handle, kMode)) return failed;
    unsigned result = _oamDbSetKeyword(handle, kMadeKeyword, std::to_string(stamp).c_str());
    for (const auto& [name, value] : MarksOf(stamp))
        if (const unsigned failed = _oamDbSetKeyword(handle, name.c_str(), value.c_str()))
            result = failed;
    if (const unsigned failed = _oamDbCloseObject(handle)) result = failed;
    return result;
}

// The stamp that an open board shows; a fault when it shows half a change.
std::uint64_t readStamp(unsigned long handle, const std::string& board, Oracle& oracle) {
    char value[kValueSize] = "";
    (void)_oamGetKeyword(handle, kStampKeyword, value, sizeof value);
    const std::uint64_t stamp = std::strtoull(value, nullptr, 10);
    for (const auto& [name, expected] : MarksOf(stamp)) {
        const unsigned code = _oamGetKeyword(handle, name.c_str(), value, sizeof value);
        if (code != OAM_SUCCESS || value != expected)
            oracle.Tell(board + " shows half of change " + std::to_string(stamp) + " to a reader");
    }
    return stamp;
}

unsigned readSettings(unsigned long handle) {
    unsigned settings = 0;
    for (unsigned bit = 0; bit < std::size(kSettingNames); ++bit) {
        char value[kValueSize] = "";
        (void)_oamGetKeyword(handle, kSettingNames[bit], value, sizeof value);
        if (std::strcmp(value, "Yes") == 0) settings |= 1U << bit;
    }
    return settings;
}

}  // namespace

std::string ProductOf(unsigned lane) { return "P" + std::to_string(lane); }

void ScriptPlugin(test::Recorder& recorder, const std::string& file, Oracle& oracle) {
    recorder.Script(file, [&oracle](test::ModuleScript& script) {
        script.products = {kSharedProduct};
        for (unsigned lane = 0; lane < Oracle::kLanes; ++lane)
            script.products.push_back(ProductOf(lane));
        script.createBoard = [&oracle](const char* board, const char*) -> unsigned {
            if (currentStep == nullptr) return makeMarks(board, oracle.NextStamp());
            copyText(board, currentStep->object);
            oracle.Place(*currentStep);
            return makeMarks(board, currentStep->stamp);
        };
        script.destroyBoard = [&oracle](const char*) -> unsigned {
            if (currentStep != nullptr) oracle.Place(*currentStep);
            return OAM_SUCCESS;
        };
        // An import stops the plug-ins when nothing can refuse it any more.
        script.exit = [&oracle]() -> unsigned {
            if (currentStep != nullptr) oracle.Place(*currentStep);
            return OAM_SUCCESS;
        };
    });
}

Client::Client(Oracle& oracle, unsigned lane, unsigned long seed, std::string directory)
    : oracle_(oracle),
      number_(lane),
      lane_(oracle.lanes.at(lane)),
      random_(seed),
      product_(ProductOf(lane)),
      directory_(std::move(directory)) {}

void Client::Run() {
    while (!lane_.IsFull()) Act();
    for (;;) pause();
}

void Client::Act() {
    begun_ = oracle_.places;
    const std::vector<std::string> own = OwnBoards();
    const bool hasRoom = own.size() < kMostOwnBoards;
    const auto any = [&] { return own[Random(own.size())]; };
    const unsigned long choice = Random(100);
    if (choice < 4) return ChangeSettings();
    if (choice < 8) return Export(false);
    if (choice < 13) return Export(true);
    if (choice < 18) return Import();
    if (choice < 38) return Change(SharedBoard(), false);
    if (choice < 43) return Read();
    if (own.empty() || (hasRoom && choice < 60)) return Create();
    if (choice < 70) return Delete(any());
    if (choice < 75) return (void)_oamStartBoard(any().c_str(), 0);
    Change(any(), choice >= 90);
}

void Client::Create() {
    Step& step = Begin(Verb::kCreate, "");
    step.stamp = oracle_.NextStamp();
    Told(step);
    char name[sizeof step.object] = "";
    const unsigned code = _oamCreateBoard(product_.c_str(), name, sizeof name);
    if (code == OAM_SUCCESS && std::strcmp(name, step.object) != 0)
        oracle_.Tell(std::string(name) + " was created under the name " + step.object);
    Done(step, code);
}

void Client::Change(const std::string& board, bool rename) {
    Step& step = Begin(Verb::kChange, board);
    step.stamp = oracle_.NextStamp();
    if (rename) copyText(product_ + " r" + std::to_string(step.stamp), step.newName);
    Told(step);
    unsigned long handle = 0;
    if (const unsigned refused =
            _oamOpenObject(kFirstClient + number_, board.c_str(), &handle, OAM_OPEN_WRITE))
        return Done(step, refused);
    step.basis = readStamp(handle, board, oracle_);
    oracle_.Place(step);
    unsigned result = OAM_SUCCESS;
    for (const auto& [name, value] : MarksOf(step.stamp))
        if (const unsigned failed = _oamSetKeyword(handle, name.c_str(), value.c_str()))
            result = failed;
    if (rename)
        if (const unsigned failed = _oamSetKeyword(handle, "Name", step.newName)) result = failed;
    const unsigned closed = _oamCloseObject(handle);
    Done(step, result != OAM_SUCCESS ? result : closed);
}

void Client::Delete(const std::string& board) {
    Step& step = Begin(Verb::kDelete, board);
    Told(step);
    Done(step, _oamDeleteBoard(board.c_str()));
}

void Client::ChangeSettings() {
    Step& step = Begin(Verb::kSettings, "Supervisor");
    step.stamp = Random(kAllSettings);
    Told(step);
    unsigned long handle = 0;
    if (const unsigned refused =
            _oamOpenObject(kFirstClient + number_, "Supervisor", &handle, OAM_OPEN_WRITE))
        return Done(step, refused);
    step.basis = readSettings(handle);
    oracle_.Place(step);
    unsigned result = OAM_SUCCESS;
    for (unsigned bit = 0; bit < std::size(kSettingNames); ++bit) {
        const char* value = (step.stamp >> bit & 1) != 0 ? "Yes" : "No";
        if (const unsigned failed = _oamSetKeyword(handle, kSettingNames[bit], value))
            result = failed;
    }
    const unsigned closed = _oamCloseObject(handle);
    Done(step, result != OAM_SUCCESS ? result : closed);
}

void Client::Export(bool toStay) {
    const std::uint64_t stamp = oracle_.NextStamp();
    Step& step =
        Begin(Verb::kExport, toStay ? kSaveFile + std::to_string(stamp) : std::string(kExportFile));
    Told(step);
    const unsigned code = _oamConfigExport((directory_ + step.object).c_str());
    Done(step, code);
    if (toStay && code == OAM_SUCCESS) oracle_.saves.at(number_) = stamp;
}

// Any open object refuses it, so it is tried again until there is a gap.
void Client::Import() {
    const std::uint64_t save = oracle_.saves.at(Random(Oracle::kSaves));
    if (save == 0) return;
    Step& step = Begin(Verb::kImport, kSaveFile + std::to_string(save));
    Told(step);
    unsigned code = OAM_SUCCESS;
    for (int i = 0; i < kImportAttempts; ++i) {
        code = _oamConfigImport((directory_ + step.object).c_str());
        if (code != OAMERR_ACCESS_DENIED) break;
        std::this_thread::yield();
    }
    Done(step, code);
}

void Client::Read() {
    const std::string board = SharedBoard();
    unsigned long handle = 0;
    if (_oamOpenObject(kFirstClient + number_, board.c_str(), &handle, OAM_OPEN_READ) !=
        OAM_SUCCESS)
        return;
    (void)readStamp(handle, board, oracle_);
    (void)_oamCloseObject(handle);
}

std::vector<std::string> Client::OwnBoards() const {
    std::vector<std::string> boards;
    char name[128];
    for (int i = 0; _oamBoardEnum(i, name, sizeof name) == OAM_SUCCESS; ++i)
        if (std::string_view(name).starts_with(product_ + ' ')) boards.emplace_back(name);
    return boards;
}

std::string Client::SharedBoard() {
    return std::string(kSharedProduct) + ' ' + std::to_string(Random(kSharedBoards));
}

Step& Client::Begin(Verb verb, const std::string& object) {
    Step& step = lane_.Next();
    step.verb = verb;
    step.begun = begun_;
    copyText(object, step.object);
    return step;
}

void Client::Told(Step& step) {
    currentStep = &step;
    lane_.Tell();
}

void Client::Done(Step& step, unsigned code) {
    currentStep = nullptr;
    step.ended = oracle_.places;
    step.code = code;
}

}  // namespace oam::torture
