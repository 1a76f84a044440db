// The path of open directories, at the limit of its 256 bytes.
#include "config/xmo_path.h"

#include <gtest/gtest.h>

#include <string>

namespace oam::test {
namespace {

TEST(XmoPath, PutsABackslashBeforeEachName) {
    XmoPath path;
    EXPECT_STREQ(path.Text(), "");
    EXPECT_TRUE(path.Append("Board 1"));
    EXPECT_TRUE(path.Append("Name"));
    EXPECT_STREQ(path.Text(), "\\Board 1\\Name");
}

TEST(XmoPath, CutsAndPutsBackTheLastName) {
    XmoPath path;
    EXPECT_TRUE(path.Append("a"));
    EXPECT_TRUE(path.Append("b"));
    EXPECT_STREQ(path.CutLast(), "b");
    EXPECT_STREQ(path.Text(), "\\a");
    path.PutBack();
    EXPECT_STREQ(path.Text(), "\\a\\b");
    EXPECT_TRUE(path.Append("c"));
    EXPECT_STREQ(path.Text(), "\\a\\b\\c");
}

TEST(XmoPath, HasNothingToCutWhenItIsEmpty) {
    XmoPath path;
    EXPECT_EQ(path.CutLast(), nullptr);
    EXPECT_TRUE(path.Append("a"));
    EXPECT_STREQ(path.CutLast(), "a");
    EXPECT_EQ(path.CutLast(), nullptr);
}

TEST(XmoPath, CutsAtTheLastBackslashOfAName) {
    XmoPath path;
    EXPECT_TRUE(path.Append("a\\b"));
    EXPECT_STREQ(path.CutLast(), "b");
    EXPECT_STREQ(path.Text(), "\\a");
}

TEST(XmoPath, HoldsAnEmptyName) {
    XmoPath path;
    EXPECT_TRUE(path.Append(""));
    EXPECT_STREQ(path.Text(), "\\");
    EXPECT_STREQ(path.CutLast(), "");
    path.PutBack();
    EXPECT_STREQ(path.Text(), "\\");
}

// Not inlined: knowing the lengths, the compiler warns of writes that the limit prevents.
[[gnu::noinline]] bool append(XmoPath& path, size_t length) {
    return path.Append(std::string(length, 'x'));
}

TEST(XmoPath, Holds255CharactersAndRefusesOneMore) {
    XmoPath path;
    EXPECT_FALSE(append(path, 255));
    EXPECT_STREQ(path.Text(), "") << "nothing changed";
    EXPECT_TRUE(append(path, 254));
    EXPECT_EQ(strlen(path.Text()), 255u);
    EXPECT_FALSE(append(path, 0));
}

TEST(XmoPath, CountsWhatItStartsWith) {
    XmoPath path = XmoPath::Root();
    EXPECT_STREQ(path.Text(), "\\");
    EXPECT_FALSE(append(path, 254));
    EXPECT_TRUE(append(path, 253));
}

}  // namespace
}  // namespace oam::test
