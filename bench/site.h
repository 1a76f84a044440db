// Installations for measuring: a directory of its own with so many boards, each of so many
// keywords, and the service started on it. One at a time; asking for the one that runs costs
// nothing.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace oam::bench {

struct Shape {
    int boards = 31;
    int keywords = 60;
    int bytes = 3000;       // of a data file, roughly
    bool hasPlugin = true;  // without, the objects are stored and nobody serves them
    bool isStarted = true;
    bool isOnDisk = true;  // else in memory, where a sync costs nothing
    auto operator<=>(const Shape&) const = default;
};

class Site {
  public:
    explicit Site(const Shape& shape);
    ~Site();
    Site(const Site&) = delete;
    Site& operator=(const Site&) = delete;

    std::string Path(std::string_view relative) const { return (root_ / relative).string(); }
    std::string DataFile(int board) const;
    const Shape& Of() const { return shape_; }

  private:
    Shape shape_;
    std::filesystem::path root_;
};

// The site of this shape, started when the shape says so. The one before it ends.
Site& useSite(const Shape& shape);
// Ends the site that there is, for those who leave it changed.
void endService();
// Ends it, and removes everything that was made for measuring.
void endSites();

// "Board 00007": all of one length, so that the table's order is the number's.
std::string boardName(int number);
// A keyword that every board has, in the middle of the list.
constexpr const char* kSomeKeyword = "Parameter[20].Value";

// The content of a board's data file, as the service writes it.
std::string dataFileOf(const std::string& name, const Shape& shape, int number);
// Writes the data files "Obj<n>.xmo" of a shape into a directory.
void writeDataFiles(const std::filesystem::path& directory, const Shape& shape);

// A directory for measuring, where TMPDIR says; removed at the end.
std::filesystem::path scratchDirectory();

// How many objects the rows of many objects have at most.
int& mostObjects();

}  // namespace oam::bench
