#include "sysfs_file.h"

#include <sys/stat.h>

#include "host_test.h"

namespace oam::pci {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::Optional;

class SysfsFile : public HostTest {
  protected:
    std::string File(std::string_view bytes) const {
        home.Write("file", bytes);
        return home.Path("file");
    }
};

TEST_F(SysfsFile, IsReadWithoutWhiteSpaceAtItsEnds) {
    EXPECT_THAT(readAttribute(File(" a b\n\n")), Optional(std::string("a b")));
    EXPECT_THAT(readAttribute(File("")), Optional(std::string()));
}

TEST_F(SysfsFile, IsNotReadWhenItIsMissingOrHugeOrBinary) {
    EXPECT_EQ(readAttribute(home.Path("missing")), std::nullopt);
    EXPECT_EQ(readAttribute(File(std::string(kLongestAttribute + 1, 'x'))), std::nullopt);
    EXPECT_TRUE(readAttribute(File(std::string(kLongestAttribute, 'x'))));
    EXPECT_EQ(readAttribute(File(std::string_view("a\0b", 3))), std::nullopt);
    EXPECT_EQ(readAttribute(File("a\x1b[31m")), std::nullopt);
    EXPECT_THAT(readAttribute(File("\xff\xfe")), Optional(std::string("\xff\xfe")));
}

TEST_F(SysfsFile, IsNotReadWhenItIsNoRegularFile) {
    EXPECT_EQ(readAttribute(home.Root()), std::nullopt);
    EXPECT_EQ(readAttribute("/dev/zero"), std::nullopt);
    ASSERT_EQ(mkfifo(home.Path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(readAttribute(home.Path("pipe")), std::nullopt);
    EXPECT_FALSE(writeAttribute(home.Path("pipe"), "order"));
}

TEST_F(SysfsFile, TakesAnOrderAndIsNeverMade) {
    EXPECT_TRUE(writeAttribute(File("something longer"), "order"));
    EXPECT_EQ(home.Read("file"), "order");
    EXPECT_FALSE(writeAttribute(home.Path("missing"), "order"));
    EXPECT_FALSE(home.Exists("missing"));
}

TEST_F(SysfsFile, LinksGiveTheLastPartOfWhatTheyPointTo) {
    fs::create_symlink("../../drivers/e1000e", home.Path("link"));
    EXPECT_EQ(linkedName(home.Path("link")), "e1000e");
    fs::create_symlink("e1000e", home.Path("bare"));
    EXPECT_EQ(linkedName(home.Path("bare")), "e1000e");
    EXPECT_EQ(linkedName(home.Path("missing")), "");
    EXPECT_EQ(linkedName(File("no link")), "");
}

TEST_F(SysfsFile, LinksThatAreTooLongAreNone) {
    fs::create_symlink(std::string(4095, 'x'), home.Path("link"));
    EXPECT_EQ(linkedName(home.Path("link")).size(), 4095u);
    EXPECT_EQ(linkedName(home.Path("link") + "/driver"), "");
}

TEST_F(SysfsFile, DirectoriesAreListedInOrderAndBounded) {
    home.MakeDirectory("list");
    for (const char* name : {"list/b", "list/a", "list/.hidden", "list/c"}) home.Write(name, "");
    EXPECT_THAT(listNames(home.Path("list"), 9), Optional(ElementsAre("a", "b", "c")));
    EXPECT_EQ(listNames(home.Path("list"), 2)->size(), 2u);
    EXPECT_EQ(listNames(home.Path("missing"), 9), std::nullopt);
    EXPECT_EQ(listNames(File("no directory"), 9), std::nullopt);
}

}  // namespace
}  // namespace oam::pci
