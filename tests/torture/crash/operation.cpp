#include "operation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "traced_child.h"

namespace oam::torture {
namespace {

constexpr unsigned long kClient = 7;
constexpr unsigned kModuleNotLoaded = 0xF0027;  // what a plug-in that cannot be loaded answers
constexpr const char* kBoard = "Prod 3";
constexpr const char* kImport = "import.oam";
constexpr const char* kAside = "oam/cfg/import-aside";
constexpr const char* kExport = "all.oam";
constexpr const char* kOldExport = "<an older export>";

unsigned change(const char* object, const char* keyword, const char* value) {
    unsigned long handle = 0;
    if (const auto failed = _oamOpenObject(kClient, object, &handle, OAM_OPEN_WRITE)) return failed;
    const unsigned set = _oamSetKeyword(handle, keyword, value);
    const unsigned closed = _oamCloseObject(handle);
    return set != OAM_SUCCESS ? set : closed;
}

unsigned create(const Host&) {
    char name[128];
    return _oamCreateBoard("Prod", name, sizeof name);
}

unsigned start(const Host&) { return _oamInit(); }

std::string content(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// Every third object is not in it, and the others have another gain.
void prepareImport(Host& host) {
    host.Renew();
    RunChild([&host] {
        if (_oamInit() != OAM_SUCCESS) return 1;
        char name[128];
        std::vector<std::string> names;
        for (int i = 0; _oamDbEnumObjects(i, name, sizeof name) == OAM_SUCCESS; ++i)
            names.push_back(name);
        for (std::size_t i = 0; i < names.size(); ++i)
            if (names[i] != "Supervisor" && names[i] != "x.bpi")
                (void)(i % 3 == 0 ? _oamDeleteBoard(names[i].c_str())
                                  : change(names[i].c_str(), "Gain", "9"));
        (void)_oamConfigExport(host.Path(kImport).c_str());
        return 0;
    });
    host.WriteToTemplate(kImport, content(host.Path(kImport)));
}

unsigned import(const Host& host) { return _oamConfigImport(host.Path(kImport).c_str()); }

std::ptrdiff_t dataFiles(const std::string& directory) {
    return std::ranges::count_if(
        std::filesystem::directory_iterator(directory),
        [](const auto& file) { return file.path().extension() == ".xmo"; });
}

// An import that was killed in its middle: the old files lie aside, and some of them, or of the new
// ones, in their places.
void prepareKilledImport(Host& host) {
    prepareImport(host);
    std::size_t calls = 0;
    const auto run = [&](const Decide& decide) {
        host.Renew();
        RunTraced(
            [&] {
                if (_oamInit() != OAM_SUCCESS) return 1;
                TraceFromHere();
                const unsigned code = import(host);
                TraceUntilHere();  // what a coverage build writes at its end is not the import's
                return static_cast<int>(code);
            },
            decide);
    };
    run([&](const SystemCall&) { return ++calls, Decision{}; });
    run([&, left = calls / 2](const SystemCall&) mutable {
        return left-- == 0 ? Decision{Decision::Kind::kKill, 0} : Decision{};
    });
    const auto old = dataFiles(host.Path(kAside));
    const auto fresh = dataFiles(host.Path("oam/cfg"));
    ASSERT_TRUE(fresh > 0 && fresh < old) << fresh << " of " << old;
    host.TakeAsTemplate();
}

const std::set<unsigned> kStartFailures = {
    OAMERR_FILE_READ_ERROR,    OAMERR_FILE_WRITE_ERROR, OAMERR_NOT_ENOUGH_MEMORY,
    OAMERR_CANT_CREATE_THREAD, OAMERR_NOT_FOUND,        OAMERR_ACCESS_DENIED,
    kModuleNotLoaded};

const std::set<unsigned> kCommitFailures = {
    OAMERR_FILE_WRITE_ERROR, OAMERR_FILE_READ_ERROR, OAMERR_NOT_ENOUGH_MEMORY, OAMERR_NOT_FOUND,
    OAMERR_ACCESS_DENIED};

}  // namespace

const std::vector<Operation>& Operations() {
    static const std::vector<Operation> kOperations = {
        {"commit", {}, false,
         [](const Host&) { return change(kBoard, "Gain", "7"); }, kCommitFailures, {}},
        {"settings", {}, false,
         [](const Host&) { return change("Supervisor", "SynchronizeEnabled", "Yes"); }, kCommitFailures, {}},
        {"creation", {}, false, &create, kCommitFailures, {}},
        {"rename", {}, false,
         [](const Host&) { return change(kBoard, "Name", "Renamed"); }, kCommitFailures, {}},
        {"deletion", {}, false,
         [](const Host&) { return unsigned{_oamDeleteBoard(kBoard)}; }, kCommitFailures, {}, true},
        {"export", [](Host& host) { host.WriteToTemplate(kExport, kOldExport); }, false,
         [](const Host& host) { return unsigned{_oamConfigExport(host.Path(kExport).c_str())}; },
         {OAMERR_FILE_WRITE_ERROR, OAMERR_FILE_READ_ERROR, OAMERR_NOT_ENOUGH_MEMORY}, {}},
        {"import", &prepareImport, false,
         &import,
         {OAMERR_NOT_FOUND, OAMERR_FILE_READ_ERROR, OAMERR_FILE_WRITE_ERROR,
          OAMERR_NOT_ENOUGH_MEMORY, OAMERR_ACCESS_DENIED, kModuleNotLoaded},
         {}},
        {"start with a rejection",
         [](Host& host) { host.WriteToTemplate("oam/cfg/Bad.xmo", "no data file"); }, true,
         &start, kStartFailures, {"Bad.bak"}, false, true},
        {"start after a killed import", &prepareKilledImport, true,
         &start, kStartFailures, {}, false, true},
    };
    return kOperations;
}

std::string NameOf(const Operation& operation) {
    std::string name = operation.name;
    std::erase(name, ' ');
    return name;
}

int Perform(const Host& host, const Operation& operation) {
    if (!operation.isStart && _oamInit() != OAM_SUCCESS) return 1;
    TraceFromHere();
    const unsigned code = operation.run(host);
    TraceUntilHere();
    const bool isUp = !operation.isStart || code == OAM_SUCCESS;
    host.Tell(std::to_string(code) + '\n' + (isUp ? StateDigest() : ""));
    return 0;
}

Outcome ToldOutcome(const Host& host) {
    const std::string told = host.Told();
    const std::size_t end = told.find('\n');
    if (end == std::string::npos) return {};
    return {static_cast<unsigned>(std::stoul(told.substr(0, end))), told.substr(end + 1)};
}

States StatesOf(Host& host, const Operation& operation) {
    if (operation.prepare) operation.prepare(host);
    host.Renew();
    const std::string before = host.LookAt().digest;
    host.Renew();
    RunChild([&] { return Perform(host, operation); });
    const Outcome done = ToldOutcome(host);
    EXPECT_EQ(done.code, unsigned{OAM_SUCCESS}) << operation.name;
    const Look look = host.LookAt();
    EXPECT_TRUE(look.isStarted) << operation.name;
    EXPECT_EQ(look.digest, done.digest) << operation.name;
    EXPECT_EQ(look.strays, operation.leaves) << operation.name;
    return {before, look.digest};
}

}  // namespace oam::torture
