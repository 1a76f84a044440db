// The fast way to read a data file says the same as the reader, or nothing.
#include <cstring>

#include "config/data_file_image.h"
#include "config/xmo_reader.h"
#include "config/xmo_writer.h"
#include "config_room.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

struct Content {
    std::string object;
    Entries entries;
    bool operator==(const Content&) const = default;
};

class DataFileImageTest : public ConfigRoom {
  protected:
    bool ReadFile(const std::string& name, DataFileImage* image) {
        return image->Open(home.Path("oam/cfg/" + name).c_str()) && image->Read();
    }

    bool ReadFast(const std::string& bytes, Content* content) {
        home.WriteDataFile("Obj0.xmo", bytes);
        DataFileImage image;
        if (!ReadFile("Obj0.xmo", &image)) return false;
        content->object = image.ObjectName();
        for (int i = 0; i < image.Keywords()->Count(); ++i) {
            const CKeyword* keyword = image.Keywords()->At(i);
            content->entries.emplace_back(keyword->Name(), keyword->Value());
        }
        return true;
    }

    // As an object is loaded; false when it would be refused.
    bool ReadInSteps(Content* content) {
        CXmlImport reader;
        if (reader.Open(home.Path("oam/cfg/Obj0.xmo").c_str(), kObjectRoot) != 0) return false;
        CArrayPtrsToKeyword list;
        CXmlImport::eTokenType kind;
        while ((kind = reader.GetNextKeyword()) == CXmlImport::kText) {
            if (list.Count() == 0) content->object = reader.ObjectName();
            if (content->object != reader.ObjectName()) return false;
            (void)list.Set(reader.Keyword(), reader.Value(), true);
        }
        for (int i = 0; i < list.Count(); ++i) {
            content->entries.emplace_back(list.At(i)->Name(), list.At(i)->Value());
        }
        return kind == CXmlImport::kEndOfFile;
    }
};

const Entries kEntries = {
    {"Alpha", "1"}, {"Alpha?Max", "9 9"}, {"Beta", ""}, {"Gamma.Two[0]", "x"}};

TEST_F(DataFileImageTest, ReadsWhatTheWriterWrites) {
    Content content;
    ASSERT_TRUE(ReadFast(DataFile("Board 1", kEntries), &content));
    EXPECT_EQ(content.object, "Board 1");
    EXPECT_EQ(content.entries, kEntries);
}

TEST_F(DataFileImageTest, AgreesWithTheReaderWhereverAByteIsOther) {
    const std::string whole = DataFile("Board 1", kEntries);
    int accepted = 0;
    const auto compare = [&](const std::string& bytes) {
        Content fast;
        if (!ReadFast(bytes, &fast)) return;
        ++accepted;
        Content slow;
        ASSERT_TRUE(ReadInSteps(&slow)) << bytes;
        EXPECT_EQ(fast, slow) << bytes;
    };
    for (size_t at = 0; at < whole.size(); ++at) {
        std::string other = whole;
        compare(other.erase(at, 1));
        compare(whole.substr(0, at));
        for (const char byte : {' ', '<', '>', '/', '\\', 'Z'}) {
            other = whole;
            other[at] = byte;
            compare(other);
        }
        for (const char byte : {'\n', '?', '\0'}) {
            compare(whole.substr(0, at) + byte + whole.substr(at));
        }
    }
    EXPECT_GT(accepted, 100);
    EXPECT_LT(accepted, 3000);
}

TEST_F(DataFileImageTest, LeavesLimitsToTheReader) {
    Content content;
    EXPECT_TRUE(ReadFast(DataFile("B", {{"A", std::string(2047, 'v')}}), &content));
    EXPECT_FALSE(ReadFast(DataFile("B", {{"A", std::string(2048, 'v')}}), &content));
    // Backslash, name, backslash, keyword and NUL in 256 bytes.
    EXPECT_TRUE(ReadFast(DataFile("B", {{std::string(252, 'k'), "1"}}), &content));
    EXPECT_FALSE(ReadFast(DataFile("B", {{std::string(253, 'k'), "1"}}), &content));
    EXPECT_FALSE(ReadFast(DataFile("B", {{"A", ""}}), &content)) << "no keyword has a value";
    EXPECT_FALSE(ReadFast(DataFile("B", {}), &content));
    EXPECT_FALSE(ReadFast(DataFile("B", {{"B", "1"}, {"A", "2"}}), &content)) << "not in order";
    EXPECT_FALSE(ReadFast(DataFile("B", {{"A", "1"}, {"a", "2"}}), &content)) << "the same twice";
    EXPECT_FALSE(ReadFast("", &content));
}

TEST_F(DataFileImageTest, ReadsMoreKeywordsThanExpectedOfTheSize) {
    Entries many;
    for (char first = 'a'; first <= 'z'; ++first) {
        for (char second = 'a'; second <= 'z'; ++second) many.push_back({{first, second}, "1"});
    }
    Content content;
    ASSERT_TRUE(ReadFast(DataFile("B", many), &content));
    EXPECT_EQ(content.entries, many);
}

TEST_F(DataFileImageTest, IsNotHeldUpByWhatIsNoFile) {
    DataFileImage image;
    home.MakeDirectory("oam/cfg/Obj0.xmo");
    EXPECT_FALSE(ReadFile("Obj0.xmo", &image));
    EXPECT_FALSE(ReadFile("Missing.xmo", &image));
    ASSERT_EQ(mkfifo(home.Path("oam/cfg/Pipe.xmo").c_str(), 0600), 0);
    EXPECT_FALSE(ReadFile("Pipe.xmo", &image));
}

}  // namespace
}  // namespace oam::test
