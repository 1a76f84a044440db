// What the packages need: every library that a program or module is linked with comes from the
// package itself, or from one that it depends on.
#include <gmock/gmock.h>

#include <set>

#include "package_set.h"

namespace oam::test {
namespace {

using ::testing::HasSubstr;

// "libc6 (>= 2.34), libpci3" without the versions.
std::set<std::string> namesIn(const std::string& depends) {
    std::set<std::string> names;
    std::string name;
    for (const char c : depends + ',') {
        if (c == ',') {
            names.insert(name.substr(0, name.find(' ')));
            name.clear();
        } else if (!(name.empty() && c == ' ')) {
            name += c;
        }
    }
    names.erase("");
    return names;
}

bool isElf(const std::string& content) {
    return content.starts_with(
        "\x7f"
        "ELF");
}

std::vector<std::string> librariesOf(const std::string& file) {
    std::vector<std::string> libraries;
    for (const std::string& line : LinesOf(OutputOf({"readelf", "-d", file}))) {
        const size_t from = line.find('[');
        if (line.find("(NEEDED)") != std::string::npos)
            libraries.push_back(line.substr(from + 1, line.find(']') - from - 1));
    }
    return libraries;
}

// The package of the system that a library comes from.
std::string systemPackageOf(const std::string& library) {
    static const std::string directory =
        LinesOf(OutputOf({"dpkg-architecture", "-qDEB_HOST_MULTIARCH"})).at(0);
    static std::map<std::string, std::string> known;
    std::string& package = known[library];
    if (package.empty()) {
        package = OutputOf({"dpkg-query", "-S", "*/" + directory + '/' + library});
        package.erase(package.find(':'));
    }
    return package;
}

}  // namespace

TEST(PackageNeeds, CoverEveryLibraryThatIsLinked) {
    const UnpackedRoot root;
    const auto packages = Packages();
    std::map<std::string, std::string> ours;
    for (const auto& [package, file] : packages)
        for (const PackagedFile& one : FilesOf(file))
            ours[std::filesystem::path(one.path).filename()] = package;
    int programs = 0;
    for (const auto& [package, file] : packages) {
        const auto depends = namesIn(Field(file, "Depends"));
        for (const PackagedFile& one : FilesOf(file)) {
            if (one.IsDirectory() || !isElf(root.Read(one.path))) continue;
            ++programs;
            for (const std::string& library : librariesOf(root.Path(one.path))) {
                const auto own = ours.find(library);
                const std::string from = own != ours.end() ? own->second : systemPackageOf(library);
                EXPECT_TRUE(from == package || depends.contains(from))
                    << one.path << " is linked with " << library << " of " << from << ", and "
                    << package << " needs " << ::testing::PrintToString(depends);
            }
        }
    }
    EXPECT_GE(programs, 9);
}

TEST(PackageNeeds, OfOursAreOfTheSameVersion) {
    for (const auto& [package, file] : Packages()) {
        EXPECT_EQ(Field(file, "Version"), OAM_VERSION);
        if (package == "liboamsuper") continue;
        EXPECT_THAT(Field(file, "Depends"), HasSubstr("liboamsuper (= " OAM_VERSION ")"));
    }
}

TEST(PackageNeeds, AreFewForTheTool) {
    // It speaks with the daemon, and brings along what that takes.
    EXPECT_THAT(namesIn(Field(Packages().at("oam"), "Depends")),
                ::testing::UnorderedElementsAre("liboamsuper", "libc6", "libgcc-s1", "libstdc++6"));
}

}  // namespace oam::test
