// The Supervisor's seven computed names, over lists that the other rooms show.
#include "config/keyword_trap.h"
#include "config_room.h"

namespace oam::test {
namespace {

class ComputedKeywords : public ConfigRoom {
  protected:
    // A value or a qualifier as text, or "(none)", "(error)".
    std::string Value(const std::string& name, unsigned size = 128) {
        return Answer(name, [&](const CKeywordTrap& trap, const char* rest, char* buffer) {
            return trap.GetValue(rest, buffer, size);
        });
    }
    std::string Qualifier(const std::string& name, const char* qualifier, unsigned size = 128) {
        return Answer(name, [&](const CKeywordTrap& trap, const char* rest, char* buffer) {
            return trap.GetQualifier(rest, qualifier, buffer, size);
        });
    }

  private:
    template <class Ask>
    static std::string Answer(const std::string& name, Ask ask) {
        const char* rest = "";
        const CKeywordTrap* trap = FindKeywordTrap(name.c_str(), &rest);
        if (trap == nullptr) return "(no trap)";
        char buffer[128] = "(untouched)";
        const oam_result result = ask(*trap, rest, buffer);
        if (result == OAM_SUCCESS) return buffer;
        return result == OAMERR_NOT_FOUND ? "(none)" : "(error)";
    }
};

TEST_F(ComputedKeywords, EachListShowsWhatItsRoomHas) {
    const struct {
        const char* keyword;
        const char* list;
    } rows[] = {{"BoardPlugins", "Plugins"},
                {"Boards", "Boards"},
                {"ExtendedManagementComponents", "Emcs"},
                {"Products", "Products"}};
    for (const auto& row : rows) {
        const std::string keyword = row.keyword;
        EXPECT_EQ(Value(keyword + ".Count"), "0");
        EXPECT_EQ(Value(keyword + "[0]"), "(none)");
        doors.AnswerList(row.list, {std::string("first ") + row.list, "second"});
        EXPECT_EQ(Value(keyword + ".Count"), "2");
        EXPECT_EQ(Value(keyword + "[0]"), std::string("first ") + row.list);
        EXPECT_EQ(Value(keyword + "[1]"), "second");
        EXPECT_EQ(Value(keyword + "[2]"), "(none)");
        EXPECT_EQ(Value(keyword), "(none)");
    }
}

TEST_F(ComputedKeywords, ListsDescribeThemselves) {
    const struct {
        const char* keyword;
        const char* description;
        const char* elementType;
    } rows[] = {
        {"BoardPlugins", "list of Board Plug-ins found", "Object"},
        {"Boards", "list of boards in configuration", "Object"},
        {"ExtendedManagementComponents", "list of Extended Management Components found", "Object"},
        {"Products", "list of supported board product types", "String"}};
    for (const auto& row : rows) {
        const std::string keyword = row.keyword;
        EXPECT_EQ(Qualifier(keyword, "Description"), row.description);
        EXPECT_EQ(Qualifier(keyword, "Type"), "Array");
        EXPECT_EQ(Qualifier(keyword, "Keywords.Count"), "(none)");
        EXPECT_EQ(Qualifier(keyword + "[0]", "Type"), row.elementType);
        EXPECT_EQ(Qualifier(keyword + ".Count", "Type"), "Integer");
    }
}

TEST_F(ComputedKeywords, CountNeedsABufferOfTwelve) {
    doors.AnswerList("Boards", {"a"});
    EXPECT_EQ(Value("boards.count", 11), "(error)");
    EXPECT_EQ(Value("BOARDS.COUNT", 12), "1");
}

TEST_F(ComputedKeywords, EmptyNameIsTheListOfTheOthers) {
    const char* const members[] = {
        "ExtendedManagementComponents", "Products",         "BoardPlugins",    "Boards",
        "DetectedBoards",               "Name",             "AutoStartEnabled", "AutoStopEnabled",
        "Version",                      "OammonLog",        "SynchronizeEnabled"};
    EXPECT_EQ(Qualifier("", "Keywords.Count"), "11");
    for (int i = 0; i < 11; ++i) {
        EXPECT_EQ(Qualifier("", ("Keywords[" + std::to_string(i) + "]").c_str()), members[i]);
    }
    EXPECT_EQ(Qualifier("", "Keywords[11]"), "(none)");
    EXPECT_EQ(Qualifier("", "Type"), "Struct");
    EXPECT_EQ(Qualifier("", "Description"), "");
    EXPECT_EQ(Qualifier("", "ReadOnly"), "Yes");
    EXPECT_EQ(Qualifier(".Count", "Type"), "Integer");
    EXPECT_EQ(Qualifier("[0]", "Type"), "String");
    EXPECT_EQ(Value(""), "(none)");
    EXPECT_EQ(Value(".Count"), "(none)");
}

TEST_F(ComputedKeywords, VersionIsAStructureOfStoredMembers) {
    EXPECT_EQ(Qualifier("Version", "Type"), "Struct");
    EXPECT_EQ(Qualifier("Version", "Keywords.Count"), "2");
    EXPECT_EQ(Qualifier("Version", "Keywords[0]"), "Version.Major");
    EXPECT_EQ(Qualifier("version", "Keywords[1]"), "Version.Minor");
    EXPECT_EQ(Qualifier("Version", "Description"), "");
    EXPECT_EQ(Value("Version"), "(none)");
    EXPECT_EQ(Value("Version.Major"), "(none)") << "it is stored";
    for (const char* below : {"Version.Major", "Version.Count", "Version[0]"}) {
        EXPECT_EQ(Qualifier(below, "Type"), "(none)") << below;
    }
}

TEST_F(ComputedKeywords, OtherNamesAreNotComputed) {
    for (const char* name : {"BoardPluginsX", "Board", "Name", "AutoStartEnabled", "Versions"}) {
        EXPECT_EQ(Value(name), "(no trap)") << name;
    }
}

// ---- Detected boards

class DetectedKeywords : public ComputedKeywords {
  protected:
    DetectedKeywords() {
        BoardDoor::The().detected = {{"b0", "Prod A", "1", "2"}, {"b1", "Prod B", "3", "4"}};
    }
};

TEST_F(DetectedKeywords, AnswerTheirFields) {
    EXPECT_EQ(Value("DetectedBoards.Count"), "2");
    EXPECT_EQ(Value("DetectedBoards[0].Name"), "b0");
    EXPECT_EQ(Value("detectedboards[1].PRODUCT"), "Prod B");
    EXPECT_EQ(Value("DetectedBoards[1].Location.PCI.Bus"), "3");
    EXPECT_EQ(Value("DetectedBoards[0].Location.PCI.Slot"), "2");
    EXPECT_EQ(Value("DetectedBoards[0].Location.PCI.Slot", 2), "2") << "a text, not a number";
    EXPECT_EQ(Value("DetectedBoards[0].Name", 2), "(error)");
    EXPECT_EQ(Value("DetectedBoards.Count", 11), "(error)");
}

TEST_F(DetectedKeywords, KeptUnknownMemberSucceedsAndWritesNothing) {
    EXPECT_EQ(Value("DetectedBoards[0].Foo"), "(untouched)");
    EXPECT_EQ(Value("DetectedBoards[0].Location"), "(untouched)");
    EXPECT_EQ(Value("DetectedBoards[0]."), "(untouched)");
}

TEST_F(DetectedKeywords, OtherRestsAreNotThere) {
    for (const char* name : {"DetectedBoards", "DetectedBoards[0]", "DetectedBoards[2].Name",
                             "DetectedBoards[-1].Name", "DetectedBoards[x].Name",
                             "DetectedBoards[0]Name", "DetectedBoards.Counts"}) {
        EXPECT_EQ(Value(name), "(none)") << name;
    }
}

TEST_F(DetectedKeywords, DescribeTheWholeTheCountAndTheElement) {
    EXPECT_EQ(Qualifier("DetectedBoards", "Description"),
              "list of boards that were physically detected in chassis");
    EXPECT_EQ(Qualifier("DetectedBoards", "Type"), "Struct");
    EXPECT_EQ(Qualifier("DetectedBoards", "Keywords.Count"), "3");
    EXPECT_EQ(Qualifier("DetectedBoards", "Keywords[2]"), "Location");
    EXPECT_EQ(Qualifier("DetectedBoards.Count", "Type"), "Integer");
    EXPECT_EQ(Qualifier("DetectedBoards.Count", "ReadOnly"), "Yes");
    EXPECT_EQ(Qualifier("DetectedBoards[0]", "Type"), "Struct");
    EXPECT_EQ(Qualifier("DetectedBoards[0]", "ReadOnly"), "Yes");
    EXPECT_EQ(Qualifier("DetectedBoards[0]", "Max"), "(none)");
}

TEST_F(DetectedKeywords, DescribeTheStructuresInside) {
    EXPECT_EQ(Qualifier("DetectedBoards[0].Location", "Type"), "Struct");
    EXPECT_EQ(Qualifier("DetectedBoards[0].location.pci", "Type"), "Struct");
    EXPECT_EQ(Qualifier("DetectedBoards[0]", "Keywords.Count"), "3");
    EXPECT_EQ(Qualifier("DetectedBoards[0].Location", "Keywords.Count"), "1");
    EXPECT_EQ(Qualifier("DetectedBoards[0].Location.PCI", "Keywords.Count"), "2");
    EXPECT_EQ(Qualifier("DetectedBoards[0].Location", "Keywords.Count", 2), "1") << "a text";
    EXPECT_EQ(Qualifier("DetectedBoards[7]", "Keywords[0]"), "DetectedBoards[7].Name");
    EXPECT_EQ(Qualifier("DetectedBoards[0]", "Keywords[2]"), "DetectedBoards[0].Location");
    EXPECT_EQ(Qualifier("DetectedBoards[0].Location", "Keywords[0]"),
              "DetectedBoards[0].Location.PCI");
    EXPECT_EQ(Qualifier("DetectedBoards[0].Location.PCI", "Keywords[1]"),
              "DetectedBoards[0].Location.PCI.Slot");
    EXPECT_EQ(Qualifier("DetectedBoards[0].Location.PCI", "Keywords[2]"), "(none)");
}

TEST_F(DetectedKeywords, DescribeWhatTheyDoNotKnowAsText) {
    for (const char* unknown : {"DetectedBoards[0].Foo", "DetectedBoards[0]."}) {
        EXPECT_EQ(Qualifier(unknown, "Type"), "STRING") << unknown;
        EXPECT_EQ(Qualifier(unknown, "Max"), "(none)") << unknown;
    }
}

TEST_F(DetectedKeywords, DescribeTheFields) {
    for (const char* number : {"DetectedBoards[0].Location.PCI.Bus",
                               "DetectedBoards[0].Location.PCI.SLOT"}) {
        EXPECT_EQ(Qualifier(number, "Type"), "INTEGER");
        EXPECT_EQ(Qualifier(number, "Max"), "255");
        EXPECT_EQ(Qualifier(number, "ReadOnly"), "Yes");
        EXPECT_EQ(Qualifier(number, "Description"), "(none)");
    }
    EXPECT_EQ(Qualifier("DetectedBoards[0].Name", "Type"), "STRING");
    EXPECT_EQ(Qualifier("DetectedBoards[0].Product", "Type"), "STRING");
    EXPECT_EQ(Qualifier("DetectedBoards[0].Name", "Max"), "(none)");
}

TEST_F(DetectedKeywords, OtherRestsHaveNoQualifiers) {
    for (const char* name : {"DetectedBoards[x]", "DetectedBoards[0]Name", "DetectedBoards.Other"}) {
        EXPECT_EQ(Qualifier(name, "Type"), "(none)") << name;
    }
}

}  // namespace
}  // namespace oam::test
