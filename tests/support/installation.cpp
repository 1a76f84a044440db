#include "support/installation.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "plugins/recorder/host.h"

namespace oam::test {

namespace fs = std::filesystem;

namespace {

void makeParts(const fs::path& root) {
    for (const char* part : {"oam/cfg", "oam/log", "lib"}) fs::create_directories(root / part);
}

}  // namespace

Installation::Installation(Layout layout, const std::string& parent) {
    std::string name = parent + "/oamXXXXXX";
    if (mkdtemp(name.data()) == nullptr) {
        ADD_FAILURE() << "cannot make a directory in " << parent;
        std::abort();
    }
    root_ = made_ = name;
    fs::create_directories(root_ / "shm");
    if (layout == Layout::kComplete) makeParts(root_);
    setenv("KOR_DIR", name.c_str(), 1);
    setenv("KOR_SHM_DIR", (root_ / "shm").c_str(), 1);
}

Installation::~Installation() {
    unsetenv("KOR_DIR");
    unsetenv("KOR_SHM_DIR");
    std::error_code ignored;
    fs::remove_all(made_, ignored);
}

void Installation::Write(std::string_view relative, std::string_view bytes) const {
    std::ofstream file(root_ / relative, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    EXPECT_TRUE(file.good()) << "cannot write " << relative;
}

std::string Installation::Read(std::string_view relative) const {
    std::ifstream file(root_ / relative, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << "cannot read " << relative;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

bool Installation::Exists(std::string_view relative) const {
    return fs::exists(fs::symlink_status(root_ / relative));
}

void Installation::Remove(std::string_view relative) const { fs::remove_all(root_ / relative); }

void Installation::MakeDirectory(std::string_view relative) const {
    fs::create_directories(root_ / relative);
}

std::vector<std::string> Installation::List(std::string_view relative) const {
    std::vector<std::string> names;
    std::error_code missing;
    for (const auto& entry : fs::directory_iterator(root_ / relative, missing)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

void Installation::WriteDataFile(std::string_view fileName, std::string_view bytes) const {
    Write("oam/cfg/" + std::string(fileName), bytes);
}

std::string Installation::ReadDataFile(std::string_view fileName) const {
    return Read("oam/cfg/" + std::string(fileName));
}

void Installation::AddModule(std::string_view module, std::string_view as) const {
    std::error_code failed;
    fs::copy_file(fs::path(Recorder::ModuleDirectory()) / module, root_ / "lib" / as,
                  fs::copy_options::overwrite_existing, failed);
    EXPECT_FALSE(failed) << "cannot copy " << module << ": " << failed.message();
}

void Installation::MoveRoot(std::string_view relative) {
    root_ /= relative;
    makeParts(root_);
    setenv("KOR_DIR", root_.c_str(), 1);
}

void Installation::MoveRootToLength(size_t length) {
    const size_t present = root_.string().size();
    ASSERT_GT(length, present + 1);
    MoveRoot(std::string(length - present - 1, 'd'));
    EXPECT_EQ(root_.string().size(), length);
}

}  // namespace oam::test
