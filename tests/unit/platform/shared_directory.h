// A shared-memory directory of the test's own, and what tests do to the files in it.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

class SharedDirectory : public testing::Test {
  protected:
    SharedDirectory() {
        char made[] = "/tmp/oamXXXXXX";
        directory_ = mkdtemp(made);
        setenv("KOR_SHM_DIR", directory_.c_str(), 1);
        setenv("KOR_DIR", directory_.c_str(), 1);
    }
    ~SharedDirectory() override {
        unsetenv("KOR_SHM_DIR");
        unsetenv("KOR_DIR");
        std::filesystem::remove_all(directory_);
    }

    const std::string& Directory() const { return directory_; }
    std::string PathOf(const std::string& name) const { return directory_ + "/" + name; }

    void WriteFile(const std::string& name, const std::string& bytes) const {
        std::ofstream(PathOf(name), std::ios::binary | std::ios::trunc) << bytes;
    }
    std::string ReadFile(const std::string& name) const {
        std::ifstream file(PathOf(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    // In place, so that whoever has mapped the file sees it.
    void Overwrite(const std::string& name, off_t offset, const std::string& bytes) const {
        const int file = open(PathOf(name).c_str(), O_WRONLY | O_CLOEXEC);
        ASSERT_GE(file, 0);
        EXPECT_EQ(static_cast<ssize_t>(bytes.size()),
                  pwrite(file, bytes.data(), bytes.size(), offset));
        close(file);
    }
    void Cut(const std::string& name, off_t size) const {
        ASSERT_EQ(0, truncate(PathOf(name).c_str(), size));
    }
    off_t SizeOf(const std::string& name) const { return StatusOf(name).st_size; }
    unsigned ModeOf(const std::string& name) const { return StatusOf(name).st_mode & 07777; }
    size_t FileCount() const {
        const std::filesystem::directory_iterator files(directory_);
        return static_cast<size_t>(std::distance(begin(files), end(files)));
    }

  private:
    struct stat StatusOf(const std::string& name) const {
        struct stat status {};
        EXPECT_EQ(0, stat(PathOf(name).c_str(), &status)) << name;
        return status;
    }

    std::string directory_;
};
