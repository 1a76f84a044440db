#include "package_set.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "child_process.h"

namespace oam::test {
namespace {

std::string locate(const std::string& name) {
    std::istringstream path("/usr/bin:/bin:/usr/sbin:/sbin");
    for (std::string directory; std::getline(path, directory, ':');)
        if (access((directory + '/' + name).c_str(), X_OK) == 0) return directory + '/' + name;
    return {};
}

}  // namespace

std::string OutputOf(const std::vector<std::string>& command) {
    std::vector<std::string> words = command;
    if (words[0].find('/') == std::string::npos) words[0] = locate(words[0]);
    const Finished run = ChildProcess(words, "/").Finish();
    EXPECT_EQ(run.status, 0) << ::testing::PrintToString(command) << '\n' << run.out << run.err;
    return run.out;
}

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

bool HasProgram(const std::string& name) { return !locate(name).empty(); }

std::map<std::string, std::string> Packages() {
    std::map<std::string, std::string> packages;
    for (const auto& entry : std::filesystem::directory_iterator(OAM_PACKAGES))
        if (entry.path().extension() == ".deb")
            packages[Field(entry.path().string(), "Package")] = entry.path().string();
    return packages;
}

std::string Field(const std::string& file, const std::string& name) {
    std::string value = OutputOf({"dpkg-deb", "-f", file, name});
    if (value.ends_with('\n')) value.pop_back();
    return value;
}

std::vector<PackagedFile> FilesOf(const std::string& file) {
    std::vector<PackagedFile> files;
    for (const std::string& line : LinesOf(OutputOf({"dpkg-deb", "-c", file}))) {
        PackagedFile one;
        std::string size, day, hour;
        std::istringstream words(line);
        words >> one.mode >> one.owner >> size >> day >> hour >> one.path;
        one.path.erase(0, 1);
        if (one.path.ends_with('/')) one.path.pop_back();
        if (!one.path.empty()) files.push_back(one);
    }
    return files;
}

UnpackedRoot::UnpackedRoot() {
    char name[] = "/tmp/oampkgXXXXXX";
    root_ = mkdtemp(name);
    for (const auto& [package, file] : Packages()) OutputOf({"dpkg-deb", "-x", file, root_});
}

UnpackedRoot::~UnpackedRoot() { std::filesystem::remove_all(root_); }

std::string UnpackedRoot::Read(const std::string& path) const {
    std::ifstream file(Path(path), std::ios::binary);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace oam::test
