#include "site.h"

#include <stdlib.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <utility>

#include "gauge.h"
#include "oam/entry.h"

namespace oam::bench {

namespace fs = std::filesystem;

namespace {

std::unique_ptr<Site> current;
fs::path scratch;

// Short: paths of data files are limited.
fs::path makeDirectory(bool onDisk = true) {
    const char* set = getenv("TMPDIR");
    const char* disk = set != nullptr && *set == '/' ? set : "/tmp";
    std::string pattern = std::string(onDisk ? disk : "/dev/shm") + "/oamXXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no directory " + pattern);
    return pattern;
}

std::vector<std::pair<std::string, std::string>> keywordsOf(const std::string& name,
                                                            const Shape& shape, int number) {
    std::vector<std::pair<std::string, std::string>> all = {
        {"AutoStart", "No"},
        {"AutoStop", "No"},
        {"Driver.BoardId", std::to_string(number)},
        {"Driver.Name", "bench"},
        {"Location.PCI.Bus", std::to_string(number / 32)},
        {"Location.PCI.Slot", std::to_string(number % 32)},
        {"Name", name},
        {"Name?Description", "name of managed object"},
        {"Name?Type", "Object"},
        {"Number", std::to_string(number)},
    };
    if (shape.hasPlugin) {
        all.emplace_back("Product", kProduct);
        all.emplace_back("Product?Type", "String");
    }
    const int others = shape.keywords - static_cast<int>(all.size());
    size_t bytes = 150;
    for (const auto& [keyword, value] : all) bytes += keyword.size() + value.size() + 12;
    const int room = others > 0 ? (shape.bytes - static_cast<int>(bytes)) / others - 31 : 0;
    for (int i = 0; i < others; ++i) {
        char keyword[32];
        std::snprintf(keyword, sizeof keyword, "Parameter[%02d].Value", i);
        all.emplace_back(keyword, std::string(static_cast<size_t>(std::clamp(room, 4, 500)), 'v'));
    }
    std::sort(all.begin(), all.end(), [](const auto& left, const auto& right) {
        return strcasecmp(left.first.c_str(), right.first.c_str()) < 0;
    });
    return all;
}

}  // namespace

std::string boardName(int number) {
    char name[32];
    std::snprintf(name, sizeof name, "Board %05d", number);
    return name;
}

std::string dataFileOf(const std::string& name, const Shape& shape, int number) {
    std::string text =
        "<?XML version=\"1.0\"?>\n<OA&M Configuration ver. 1.0 - Object>\n   <" + name + ">\n";
    for (const auto& [keyword, value] : keywordsOf(name, shape, number)) {
        text += "      <" + keyword + ">" + value + "</>\n";
    }
    return text + "   </" + name + ">\n</OA&M Configuration ver. 1.0 - Object>\n";
}

void writeDataFiles(const fs::path& directory, const Shape& shape) {
    for (int i = 0; i < shape.boards; ++i) {
        std::ofstream(directory / ("Obj" + std::to_string(i) + ".xmo"))
            << dataFileOf(boardName(i), shape, i);
    }
}

Site::Site(const Shape& shape) : shape_(shape), root_(makeDirectory(shape.isOnDisk)) {
    for (const char* name : {"oam/cfg", "oam/log", "lib", "shm"}) {
        fs::create_directories(root_ / name);
    }
    if (shape.hasPlugin) fs::copy_file(OAM_BENCH_PLUGIN, root_ / "lib/bench.bpi");
    writeDataFiles(root_ / "oam/cfg", shape);
    setenv("KOR_DIR", root_.c_str(), 1);
    setenv("KOR_SHM_DIR", (root_ / "shm").c_str(), 1);
    if (shape.isStarted && _oamInit() != OAM_SUCCESS) {
        throw std::runtime_error("the service does not start");
    }
}

Site::~Site() {
    (void)_oamExit();
    std::error_code ignored;
    fs::remove_all(root_, ignored);
}

std::string Site::DataFile(int board) const {
    return Path("oam/cfg/Obj" + std::to_string(board) + ".xmo");
}

Site& useSite(const Shape& shape) {
    if (current == nullptr || current->Of() != shape) {
        current.reset();
        current = std::make_unique<Site>(shape);
    }
    return *current;
}

void endService() { current.reset(); }

void endSites() {
    endService();
    std::error_code ignored;
    if (!scratch.empty()) fs::remove_all(scratch, ignored);
    scratch.clear();
}

fs::path scratchDirectory() {
    if (scratch.empty()) scratch = makeDirectory();
    return scratch;
}

int& mostObjects() {
    static int most = 10000;
    return most;
}

}  // namespace oam::bench
