#include "data_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <thread>

#include "history/file_identity.h"
#include "object_kind.h"

namespace oam::server::test {

namespace fs = std::filesystem;

std::string BoardFile(const std::string& name, const Entries& more) {
    Entries entries = StandardEntries(name, "SIM-E1");
    entries.insert(entries.end(), more.begin(), more.end());
    std::sort(entries.begin(), entries.end(), [](const auto& left, const auto& right) {
        return NameLess()(left.first, right.first);
    });
    return DataFile(name, entries);
}

void DataFiles::Commit(const std::string& file, const std::string& bytes) const {
    home_.WriteDataFile(file + ".saving", bytes);
    fs::rename(Path(file + ".saving"), Path(file));
}

void DataFiles::CommitBoard(const std::string& file, const std::string& name,
                            const Entries& more) const {
    Commit(file, BoardFile(name, more));
}

void DataFiles::Delete(const std::string& file) const {
    EXPECT_TRUE(fs::remove(Path(file))) << file;
}

void DataFiles::AwaitSettled() const {
    const auto isSettled = [](const std::string& path) {
        const auto identity = FileIdentity::Of(path);
        return !identity || identity->IsSettled(Now());
    };
    while (!isSettled(Directory())) std::this_thread::yield();
    for (const auto& entry : fs::directory_iterator(Directory()))
        while (!isSettled(entry.path())) std::this_thread::yield();
}

}  // namespace oam::server::test
