#include "digest.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <future>
#include <iterator>
#include <sstream>
#include <thread>
#include <vector>

#include "oam/entry.h"
#include "oam/shadow.h"

namespace oam::torture {

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::seconds kLockLimit{30};

// One answer: its code, and its text when there is one.
template <class Ask>
std::string textFrom(Ask ask) {
    char text[512] = "";
    const unsigned code = ask(text, static_cast<unsigned>(sizeof text));
    return code == OAM_SUCCESS ? text : "(" + std::to_string(code & 0xFF) + ")";
}

template <class Ask>
std::string numbersFrom(Ask ask) {
    unsigned first = 0;
    unsigned second = 0;
    const unsigned code = ask(&first, &second);
    return std::to_string(code & 0xFF) + ":" + std::to_string(first) + "," + std::to_string(second);
}

void addEntries(std::ostream& out, unsigned long handle) {
    char name[512];
    for (int i = 0; _oamDbEnumKeywords(handle, i, name, sizeof name) == OAM_SUCCESS; ++i) {
        out << "  " << name << '=' << textFrom([&](char* text, unsigned size) {
            return _oamDbGetKeyword(handle, name, text, size);
        }) << '\n';
    }
}

void addObjects(std::ostream& out, const World& world) {
    char name[512];
    for (int i = 0; _oamDbEnumObjects(i, name, sizeof name) == OAM_SUCCESS; ++i) {
        out << "object " << name << '\n';
        unsigned long handle = 0;
        if (world.handle != 0 && world.openObject == name) {
            bool provider = false;
            (void)_oamDbGetProviderMode(world.handle, &provider);
            out << "  open, provider " << provider << '\n';
            addEntries(out, world.handle);
        } else if (_oamDbOpenObject(name, &handle, OAM_OPEN_READ) == OAM_SUCCESS) {
            addEntries(out, handle);
            (void)_oamDbCloseObject(handle);
        } else {
            out << "  cannot be opened\n";
        }
    }
}

void addLists(std::ostream& out) {
    unsigned long handle = 0;
    if (_oamOpenObject(kOpener, "Supervisor", &handle, OAM_OPEN_READ) != OAM_SUCCESS) return;
    for (const char* list :
         {"Boards", "Products", "BoardPlugins", "ExtendedManagementComponents", "DetectedBoards"}) {
        out << list << ": " << textFrom([&](char* text, unsigned size) {
            return _oamGetKeyword(handle, (std::string(list) + ".Count").c_str(), text, size);
        }) << '\n';
    }
    (void)_oamCloseObject(handle);
}

void addBoards(std::ostream& out) {
    char name[512];
    for (int i = 0; _oamBoardEnum(i, name, sizeof name) == OAM_SUCCESS; ++i) {
        out << "board " << name;
        out << ' ' << numbersFrom([&](auto* a, auto*) { return _oamBoardGetNumber(name, a); });
        out << ' '
            << numbersFrom([&](auto* a, auto* b) { return _oamBoardGetBusSlot(name, a, b); });
        out << ' '
            << numbersFrom([&](auto* a, auto* b) { return _oamBoardGetShelfSlot(name, a, b); });
        out << ' ' << numbersFrom([&](auto* a, auto*) { return _oamBoardGetIOAddress(name, a); });
        out << ' '
            << numbersFrom([&](auto* a, auto*) { return _oamBoardGetAutoStartEnabled(name, a); });
        out << ' '
            << numbersFrom([&](auto* a, auto*) { return _oamBoardGetAutoStopEnabled(name, a); });
        for (auto* ask : {&_oamBoardGetProduct, &_oamBoardGetSerialNumber}) {
            out << ' '
                << textFrom([&](char* text, unsigned size) { return ask(name, text, size); });
        }
        for (unsigned mac = 0; mac < OAM_MAC_KEPT; ++mac) {
            out << ' ' << textFrom([&](char* text, unsigned size) {
                return _oamBoardGetMACAddress(name, text, size, mac);
            });
        }
        char id[512] = "";
        out << ' ' << textFrom([&](char* text, unsigned size) {
            return _oamBoardGetDriverIDs(name, text, size, id, sizeof id);
        }) << '/'
            << id << '\n';
    }
}

void addShadow(std::ostream& out) {
    out << "shadow" << (oamShadowGetPtr() != nullptr ? "" : " gone") << '\n';
    bool isVx = false;
    out << oamShadowBoardGetIsUsingVxPlugin(0, &isVx) << isVx << '\n';
    char name[512];
    for (int i = 0; oamShadowBoardEnum(0, i, name, sizeof name) == OAM_SUCCESS; ++i) {
        unsigned number = 0;
        bool aLaw = false;
        char id[512] = "";
        out << "  " << name << ' ' << oamShadowBoardGetNumber(0, name, &number) << number << ' '
            << oamShadowBoardIsUsingALaw(0, name, &aLaw) << aLaw << ' '
            << textFrom([&](char* text, unsigned size) {
                   return oamShadowBoardGetDriverIDs(0, name, text, size, id, sizeof id);
               })
            << '/' << id << '\n';
    }
}

std::string bytesOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void addFiles(std::ostream& out, const fs::path& root) {
    std::vector<fs::path> paths;
    for (const auto& entry : fs::recursive_directory_iterator(root)) paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());
    for (const fs::path& path : paths) {
        out << "file " << fs::relative(path, root.parent_path()).string() << '\n';
        if (!fs::is_directory(path)) out << bytesOf(path);
    }
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

}  // namespace

std::string Digest(World& world) {
    std::ostringstream out;
    out << "running " << g_bOamIsRunning << '\n' << "answered " << world.text << '\n';
    addObjects(out, world);
    addLists(out);
    addBoards(out);
    addShadow(out);
    out << "clients " << world.ReachedClients() << '\n';
    addFiles(out, world.Path("oam/cfg"));
    addFiles(out, world.Path("out"));
    out << "report\n" << bytesOf(world.Path("oam/log/oam.rpt"));
    return out.str();
}

std::string OpenThings() {
    // Refused before the file is looked for while any object is open.
    const bool isOpen = _oamConfigImport("/there is no such file") == OAMERR_ACCESS_DENIED;
    const auto files = std::distance(fs::directory_iterator("/proc/self/fd"), {});
    return std::string(isOpen ? "objects are open" : "no object is open") + ", " +
           std::to_string(files) + " files";
}

bool IsUnlocked() {
    auto answered = std::make_shared<std::promise<void>>();
    std::future<void> done = answered->get_future();
    std::thread asking([answered] {
        char name[512];
        (void)_oamDbEnumObjects(0, name, sizeof name);
        (void)_oamBoardEnum(0, name, sizeof name);
        (void)oamShadowBoardEnum(0, 0, name, sizeof name);
        (void)_oamAlertUnregister(kOpener);
        (void)test::Raise(OAMEVN_TRACE, OAM_INFORMATION, "Test", "is it locked");
        (void)_oamGetText(1);
        answered->set_value();
    });
    const bool isReady = done.wait_for(kLockLimit) == std::future_status::ready;
    if (isReady) {
        asking.join();
    } else {
        asking.detach();
    }
    return isReady;
}

bool AddsOnly(const std::string& before, const std::string& found, std::string_view except) {
    const auto later = linesOf(found);
    auto place = later.begin();
    for (const std::string& line : linesOf(before)) {
        if (line.starts_with(except)) continue;
        place = std::find(place, later.end(), line);
        if (place == later.end()) return false;
        ++place;
    }
    return true;
}

std::string Difference(const std::string& expected, const std::string& found) {
    constexpr size_t kMost = 6;
    const auto here = linesOf(expected);
    const auto there = linesOf(found);
    std::string text;
    const auto tell = [&](const auto& lines, const auto& others, const char* sign) {
        size_t told = 0;
        for (const std::string& line : lines) {
            const bool isShared = std::count(others.begin(), others.end(), line) ==
                                  std::count(lines.begin(), lines.end(), line);
            if (!isShared && told++ < kMost) text += sign + line + '\n';
        }
    };
    tell(here, there, "- ");
    tell(there, here, "+ ");
    return text.empty() ? "(the same lines in another order)" : text;
}

}  // namespace oam::torture
