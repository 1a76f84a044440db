#include "host.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "oam/entry.h"
#include "support/data_file.h"
#include "traced_child.h"

namespace oam::torture {

namespace fs = std::filesystem;

namespace {

constexpr const char* kPlugin = "x.bpi";
constexpr const char* kConfiguration = "oam/cfg";

void useInstallation(const std::string& directory) {
    setenv("KOR_DIR", directory.c_str(), 1);
    setenv("KOR_SHM_DIR", (directory + "/shm").c_str(), 1);
}

// A second start finds what the first one found.
void tellLook(const Host& host) {
    std::string told = "failed";
    if (_oamInit() == OAM_SUCCESS) {
        told = "started\n" + StateDigest();
        (void)_oamExit();
        if (_oamInit() != OAM_SUCCESS || told != "started\n" + StateDigest())
            told = "changed by a second start";
    }
    (void)_oamExit();
    host.Tell(told);
}

}  // namespace

std::string StateDigest() {
    std::string digest;
    char text[4096];
    for (int i = 0; _oamDbEnumObjects(i, text, sizeof text) == OAM_SUCCESS; ++i) {
        digest += std::string(text) + '\n';
        unsigned long handle = 0;
        if (_oamDbOpenObject(text, &handle, OAM_OPEN_READ) != OAM_SUCCESS) {
            digest += "  cannot be opened\n";
            continue;
        }
        char value[4096];
        for (int k = 0; _oamDbEnumKeywords(handle, k, text, sizeof text) == OAM_SUCCESS; ++k) {
            const bool isRead = _oamDbGetKeyword(handle, text, value, sizeof value) == OAM_SUCCESS;
            digest += std::string("  ") + text + '=' + (isRead ? value : "(unreadable)") + '\n';
        }
        (void)_oamDbCloseObject(handle);
    }
    return digest;
}

Host::Host(int objects, const std::string& parent) : home_(test::Layout::kComplete, parent) {
    for (const char* part : {"t/oam/cfg", "t/oam/log", "t/lib", "t/shm"})
        fs::create_directories(home_.Path(part));
    fs::copy_file(fs::path(test::Recorder::ModuleDirectory()) / "recorder.bpi",
                  home_.Path("t/lib") + "/" + kPlugin);
    recorder_.Script(kPlugin, [](test::ModuleScript& script) {
        script.products = {"Prod"};
        script.boardKeywords = {{"Gain", "3"}, {"Eeprom.SerialNum", "S-1"}};
    });
    RunChild([&] {
        useInstallation(home_.Path("t"));
        char name[128];
        if (_oamInit() != OAM_SUCCESS) return 1;
        for (int i = 0; i < kBoards; ++i)
            if (_oamCreateBoard("Prod", name, sizeof name) != OAM_SUCCESS) return 1;
        return _oamExit() == OAM_SUCCESS ? 0 : 1;
    });
    for (int i = kBoards; i < objects; ++i) {
        const std::string name = "Thing " + std::to_string(i);
        home_.Write("t/oam/cfg/Obj" + std::to_string(i) + ".xmo",
                    test::DataFile(name, {{"Gain", "3"}, {"Name", name}}));
    }
    for (const auto& log : fs::directory_iterator(home_.Path("t/oam/log"))) fs::remove(log);
    fs::remove_all(home_.Path("t/shm"));
    fs::create_directory(home_.Path("t/shm"));
}

Host::~Host() = default;

void Host::Renew() {
    fs::remove_all(home_.Path("w"));
    fs::create_directory(home_.Path("w"));
    for (const auto& part : fs::directory_iterator(home_.Path("t"))) {
        // Nobody writes to the modules.
        const auto how = part.path().filename() == "lib" ? fs::copy_options::create_hard_links
                                                         : fs::copy_options::none;
        fs::copy(part.path(), fs::path(home_.Path("w")) / part.path().filename(),
                 fs::copy_options::recursive | how);
    }
    fs::remove(home_.Path("told"));
    useInstallation(home_.Path("w"));
}

void Host::WriteToTemplate(const std::string& relative, const std::string& bytes) {
    fs::create_directories(fs::path(home_.Path("t/" + relative)).parent_path());
    home_.Write("t/" + relative, bytes);
}

void Host::TakeAsTemplate() {
    fs::remove_all(home_.Path("t"));
    fs::copy(home_.Path("w"), home_.Path("t"), fs::copy_options::recursive);
}

std::string Host::Path(const std::string& relative) const { return home_.Path("w/" + relative); }

Look Host::LookAt() const {
    Look look;
    RunChild([this] {
        tellLook(*this);
        return 0;
    });
    const std::string told = Told();
    constexpr std::string_view kStarted = "started\n";
    look.isStarted = told.starts_with(kStarted);
    look.digest = look.isStarted ? told.substr(kStarted.size()) : told;
    for (const auto& entry : fs::directory_iterator(Path(kConfiguration)))
        if (entry.path().extension() != ".xmo") look.strays.push_back(entry.path().filename());
    return look;
}

void Host::Tell(const std::string& text) const {
    std::ofstream(home_.Path("told"), std::ios::trunc) << text;
}

std::string Host::Told() const {
    std::ifstream file(home_.Path("told"));
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace oam::torture
