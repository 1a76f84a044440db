// Building and copying records, at the edges of the text's buffer.
#include "alert/record.h"

#include <cwchar>

#include "alert_room.h"
#include "support/allocation_fuse.h"

namespace oam::test {
namespace {

// A record with the room in which it may lie.
class Made {
  public:
    RecordRoom& Room() { return *room_; }
    AlertRecord& Large() { return large_; }
    void Set(oam_msg_tag* record) { record_ = record; }

    oam_msg_tag* get() const { return record_; }
    oam_msg_tag* operator->() const { return record_; }
    oam_msg_tag& operator*() const { return *record_; }
    bool operator==(std::nullptr_t) const { return record_ == nullptr; }

  private:
    std::unique_ptr<RecordRoom> room_ = std::make_unique<RecordRoom>();
    AlertRecord large_;
    oam_msg_tag* record_ = nullptr;
};

__attribute__((format(printf, 5, 6))) void MakeIn(Made* made, unsigned code, unsigned severity,
                                                  const char* source, const char* format, ...) {
    memset(&made->Room(), 0xEE, sizeof made->Room());
    va_list arguments;
    va_start(arguments, format);
    made->Set(makeRecord(&made->Room(), &made->Large(), code, severity, source, format, arguments));
    va_end(arguments);
}

template <class... Values>
Made Make(unsigned code, unsigned severity, const char* source, const char* format,
          Values... values) {
    Made made;
    MakeIn(&made, code, severity, source, format, values...);
    return made;
}

Made OfLength(size_t length) {
    return Make(OAMEVN_ALERT, 0, "Src", "%s", std::string(length, 'x').c_str());
}

TEST(Record, HasItsHeaderSourceAndText) {
    const Made record = Make(OAMEVN_RENAMED, 2, "Board 1", "%s-%d", "text", 7);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->size, 7u + 6u + 26u);
    EXPECT_EQ(record->code, OAMEVN_RENAMED);
    EXPECT_EQ(record->severity, 2u);
    EXPECT_EQ(record->sourceOffset, 24u);
    EXPECT_EQ(record->textOffset, 7u + 25u);
    EXPECT_STREQ(oamMessageSource(record.get()), "Board 1");
    EXPECT_STREQ(oamMessageText(record.get()), "text-7");
}

TEST(Record, MayHaveEmptyTexts) {
    const Made record = Make(OAMEVN_ALERT, 0, "", "%s", "");
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->size, 26u);
    EXPECT_STREQ(oamMessageSource(record.get()), "");
    EXPECT_STREQ(oamMessageText(record.get()), "");
}

TEST(Record, Holds255CharactersWhole) {
    const Made record = OfLength(255);
    EXPECT_EQ(record->size, 3u + 255u + 26u);
    EXPECT_EQ(oamMessageText(record.get()), std::string(255, 'x'));
}

TEST(Record, OfExactly256CharactersIsCorrectedTo255) {
    const Made record = OfLength(256);
    EXPECT_EQ(record->size, 3u + 281u);
    EXPECT_EQ(oamMessageText(record.get()), std::string(255, 'x'));
}

TEST(Record, KeptALongerTextIsCutButCountsWholeInTheSize) {
    for (size_t length : {257u, 300u, 5000u}) {
        const Made record = OfLength(length);
        EXPECT_EQ(record->size, 3u + length + 26u);
        EXPECT_EQ(oamMessageText(record.get()), std::string(255, 'x'));
    }
    EXPECT_EQ(OfLength(300)->size, 3u + 326u);
}

TEST(Record, BytesBehindACutTextAreZero) {
    const Made record = OfLength(300);
    const char* bytes = reinterpret_cast<const char*>(record.get());
    for (size_t i = record->textOffset + 255; i < record->size; ++i) EXPECT_EQ(bytes[i], 0) << i;
}

TEST(Record, OfATextThatCannotBeFormattedCountsAs255) {
    const wchar_t bad[] = {L'a', static_cast<wchar_t>(0x7FFFFFFF), 0};
    const Made record = Make(OAMEVN_ALERT, 0, "Src", "before %ls", bad);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->size, 3u + 281u);
    EXPECT_LT(strlen(oamMessageText(record.get())), 256u);
}

TEST(Record, TakesAForeignTextAsItIs) {
    const Made record = Make(OAMEVN_ALERT, 0, "100%s", "%s", "%n%s%d");
    EXPECT_STREQ(oamMessageSource(record.get()), "100%s");
    EXPECT_STREQ(oamMessageText(record.get()), "%n%s%d");
}

TEST(Record, OfOrdinaryLengthTakesNoMemory) {
    Made made;
    const std::string longest(255, 'x');
    const AllocationFuse fuse(1);
    MakeIn(&made, OAMEVN_ALERT, 0, std::string_view("Supervisor").data(), "%s", longest.c_str());
    EXPECT_EQ(static_cast<void*>(made.get()), &made.Room());
}

TEST(Record, TooLargeForTheRoomIsNullWithoutMemory) {
    Made made;
    const std::string large(600, 'x');
    const AllocationFuse fuse(1);
    MakeIn(&made, OAMEVN_ALERT, 0, "S", "%s", large.c_str());
    EXPECT_TRUE(made == nullptr);
}

TEST(RecordCopy, IsTheSameInMemoryOfItsOwn) {
    const Made record = OfLength(300);
    const AlertRecord copy = copyRecord(*record);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(memcmp(copy.get(), record.get(), record->size), 0);
    EXPECT_NE(copy.get(), record.get());
}

TEST(RecordCopy, TakesTheTextsAlsoWhenTheSizeIsTooSmall) {
    Message message(OAMEVN_ALERT, 1, "Source", "the text");
    message.Change()->size = 0;
    const AlertRecord copy = copyRecord(*message.Get());
    EXPECT_STREQ(oamMessageSource(copy.get()), "Source");
    EXPECT_STREQ(oamMessageText(copy.get()), "the text");
    EXPECT_EQ(copy->size, 0u);
}

TEST(RecordCopy, TakesTextsInAnyOrder) {
    Message message(OAMEVN_ALERT, 1, "first", "second");
    std::swap(message.Change()->sourceOffset, message.Change()->textOffset);
    const AlertRecord copy = copyRecord(*message.Get());
    EXPECT_STREQ(oamMessageSource(copy.get()), "second");
    EXPECT_STREQ(oamMessageText(copy.get()), "first");
}

TEST(RecordCopy, IsNullWithoutMemory) {
    const Message message(OAMEVN_ALERT, 0, "S", "T");
    const AllocationFuse fuse(1);
    EXPECT_EQ(copyRecord(*message.Get()), nullptr);
}

class RaisedRecord : public AlertRoom {};

TEST_F(RaisedRecord, WithoutMemoryIsNeitherLoggedNorDelivered) {
    OpenLog();
    InstallCallback();
    EXPECT_EQ(AlertInit(), OAM_SUCCESS);
    {
        const std::string large(600, 'x');
        const AllocationFuse fuse(1);
        EXPECT_EQ(AlertNotify(OAMEVN_ALERT, 0, "S", "%s", large.c_str()), OAMERR_NOT_ENOUGH_MEMORY);
    }
    EXPECT_EQ(Log(), kLoggingStart);
    EXPECT_THAT(doors.Calls(), ::testing::IsEmpty());
}

TEST_F(RaisedRecord, NullIsRefused) { EXPECT_EQ(_oamAlertNotify(nullptr), OAMERR_NOT_FOUND); }

}  // namespace
}  // namespace oam::test
