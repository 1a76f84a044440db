// The products that the plug-ins' objects name, and the boards that they detect.
#include "board_room.h"
#include "support/allocation_fuse.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> Products() {
    std::vector<std::string> names;
    for (int i = 0; i < ProductsGetCount(); ++i) names.emplace_back(ProductsGetAt(i));
    return names;
}

class ProductList : public BoardRoom {
  protected:
    void AddProducts(const std::string& plugin, const std::vector<std::string>& names) {
        ConfigDoor::Entries entries = {{"Products.Count", std::to_string(names.size())}};
        for (size_t i = 0; i < names.size(); ++i) {
            entries["Products[" + std::to_string(i) + "]"] = names[i];
        }
        ConfigDoor::The().AddObject(plugin, entries);
    }
};

TEST_F(ProductList, IsAskedOfEachPluginsObjectInNameOrder) {
    const CPlugin* b = AddPlugin<2>("b.bpi");
    const CPlugin* a = AddPlugin<1>("a.bpi");
    AddProducts("b.bpi", {"Zeta", "alpha"});
    AddProducts("a.bpi", {"Mid"});
    EXPECT_EQ(productsInit(), OAM_SUCCESS);
    EXPECT_THAT(Products(), ElementsAre("alpha", "Mid", "Zeta"));
    EXPECT_EQ(products().Find("ALPHA")->Plugin(), b);
    EXPECT_EQ(products().Find("mid")->Plugin(), a);
    EXPECT_THAT(doors.Calls(),
                ElementsAre("OpenObject(handle, a.bpi, 0)", "GetKeyword(1, Products.Count)",
                            "GetKeyword(1, Products[0])", "CloseObject(1)",
                            "OpenObject(handle, b.bpi, 0)", "GetKeyword(2, Products.Count)",
                            "GetKeyword(2, Products[0])", "GetKeyword(2, Products[1])",
                            "CloseObject(2)"));
}

TEST_F(ProductList, PluginWithoutACountHasNone) {
    AddPlugin();
    for (const char* count : {"", "none", "-3", "0"}) {
        ConfigDoor::The().AddObject("a.bpi", {{"Products.Count", count}});
        EXPECT_EQ(productsInit(), OAM_SUCCESS) << count;
    }
    ConfigDoor::The().AddObject("a.bpi");
    EXPECT_EQ(productsInit(), OAM_SUCCESS);
    EXPECT_THAT(Products(), IsEmpty());
}

TEST_F(ProductList, CountIsBounded) {
    ConfigDoor::The().AddObject("a.bpi", {{"Products.Count", "2000000000"}});
    EXPECT_EQ(readCount(ConfigDoor::The().Open("a.bpi"), "Products.Count"), 4096);
}

TEST_F(ProductList, ProductThatIsNamedTwiceFailsAndEmptiesTheList) {
    AddPlugin<1>("a.bpi");
    AddPlugin<2>("b.bpi");
    AddProducts("a.bpi", {"Prod"});
    AddProducts("b.bpi", {"PROD"});
    EXPECT_EQ(productsInit(), OAMERR_ALREADY_EXISTS);
    EXPECT_THAT(Products(), IsEmpty());
    EXPECT_EQ(ConfigDoor::The().StillOpen(), 0u);
}

TEST_F(ProductList, ProductThatCannotBeReadFailsAndEmptiesTheList) {
    AddPlugin();
    ConfigDoor::The().AddObject("a.bpi", {{"Products.Count", "2"}, {"Products[0]", "Prod"}});
    EXPECT_EQ(productsInit(), OAMERR_NOT_FOUND);
    EXPECT_THAT(Products(), IsEmpty());
    EXPECT_EQ(ConfigDoor::The().StillOpen(), 0u);
}

TEST_F(ProductList, ObjectThatCannotBeOpenedOrClosedFails) {
    AddPlugin();
    AddProducts("a.bpi", {"Prod"});
    for (const char* step : {"OpenObject", "CloseObject"}) {
        doors.Answer(step, oam_result(0x42));
        EXPECT_EQ(productsInit(), oam_result(0x42)) << step;
        EXPECT_THAT(Products(), IsEmpty());
        doors.Reset();
    }
}

TEST_F(ProductList, ReadFailureCountsBeforeTheFailedClosing) {
    AddPlugin();
    ConfigDoor::The().AddObject("a.bpi", {{"Products.Count", "1"}});
    doors.Answer("CloseObject", oam_result(0x42));
    EXPECT_EQ(productsInit(), OAMERR_NOT_FOUND);
}

TEST_F(ProductList, GrowsAndIsEmptiedAtTheEnd) {
    const CPlugin* plugin = AddPlugin();
    for (int i = 0; i < 17; ++i) {
        ASSERT_EQ(products().Insert(("p" + std::to_string(i)).c_str(), plugin), OAM_SUCCESS);
    }
    EXPECT_EQ(products().Capacity(), 32);
    EXPECT_EQ(products().Remove("P3"), OAM_SUCCESS);
    EXPECT_EQ(products().Capacity(), 16);
    EXPECT_EQ(productsExit(), OAM_SUCCESS);
    EXPECT_EQ(products().Capacity(), 0);
}

TEST_F(ProductList, IsEmptyWhenThereIsNoMemory) {
    AddPlugin();
    AddProducts("a.bpi", {"One", "Two"});
    EXPECT_EQ(FailEachAllocation([&] { return productsInit(); },
                                 [&](oam_result result) {
                                     EXPECT_EQ(result, OAMERR_NOT_ENOUGH_MEMORY);
                                     EXPECT_THAT(Products(), IsEmpty());
                                 }),
              OAM_SUCCESS);
    EXPECT_THAT(Products(), ElementsAre("One", "Two"));
}

// ---- Detected boards

class Detection : public BoardRoom {
  protected:
    static ConfigDoor::Entries Detected(int i, const std::string& name, const std::string& product,
                                        const std::string& bus, const std::string& slot) {
        const std::string prefix = "DetectedBoards[" + std::to_string(i) + "].";
        return {{prefix + "Name", name},
                {prefix + "Product", product},
                {prefix + "Location.PCI.Bus", bus},
                {prefix + "Location.PCI.Slot", slot}};
    }
    static void Show(const std::string& plugin, const std::string& count,
                     const std::vector<ConfigDoor::Entries>& boards) {
        ConfigDoor::Entries all = {{"DetectedBoards.Count", count}};
        for (const auto& entries : boards) all.insert(entries.begin(), entries.end());
        ConfigDoor::The().AddObject(plugin, all);
    }
    static std::vector<std::string> Rows() {
        std::vector<std::string> rows;
        for (int i = 0; i < DetectedBoardsGetCount(); ++i) {
            std::string row;
            for (int field = 1; field <= 4; ++field) {
                row += std::string(field > 1 ? "|" : "") + DetectedBoardsGetAt(i, field);
            }
            rows.push_back(row);
        }
        return rows;
    }
};

TEST_F(Detection, AsksEachPluginToLookThenReadsItsObject) {
    AddPlugin();
    Show("a.bpi", "2", {Detected(0, "Z", "P1", "1", "2"), Detected(1, "a", "P2", "3", "4")});
    EXPECT_EQ(detectedproductsInit(), OAM_SUCCESS);
    EXPECT_THAT(Rows(), ElementsAre("a|P2|3|4", "Z|P1|1|2"));
    EXPECT_EQ(doors.Calls().at(0), "p1.DetectBoards()");
    EXPECT_EQ(doors.Calls().at(1), "OpenObject(handle, a.bpi, 0)");
    EXPECT_EQ(doors.Calls().back(), "CloseObject(1)");
}

TEST_F(Detection, ReplacesWhatWasDetectedBefore) {
    AddPlugin();
    Show("a.bpi", "1", {Detected(0, "Old", "P", "1", "2")});
    EXPECT_EQ(detectedproductsInit(), OAM_SUCCESS);
    Show("a.bpi", "1", {Detected(0, "New", "P", "1", "2")});
    EXPECT_EQ(detectedproductsInit(), OAM_SUCCESS);
    EXPECT_THAT(Rows(), ElementsAre("New|P|1|2"));
}

TEST_F(Detection, KeptSecondBoardOfANameIsDropped) {
    AddPlugin<1>("a.bpi");
    AddPlugin<2>("b.bpi");
    Show("a.bpi", "2", {Detected(0, "B", "P1", "1", "1"), Detected(1, "b", "P2", "2", "2")});
    Show("b.bpi", "1", {Detected(0, "B", "P3", "3", "3")});
    EXPECT_EQ(detectedproductsInit(), OAM_SUCCESS);
    EXPECT_THAT(Rows(), ElementsAre("B|P1|1|1"));
}

TEST_F(Detection, KeptFailedReadKeepsWhatTheBufferHeldAndANumberIsZero) {
    AddPlugin();
    Show("a.bpi", "2",
         {Detected(0, "B", "P1", "1", "x"), {{"DetectedBoards[1].Name", "C"}}});
    EXPECT_EQ(detectedproductsInit(), OAM_SUCCESS);
    EXPECT_THAT(Rows(), ElementsAre("B|P1|1|0", "C|P1|0|0"));
}

TEST_F(Detection, ResultOfTheLookIsIgnored) {
    AddPlugin();
    doors.Answer("p1.DetectBoards", oam_result(9));
    Show("a.bpi", "1", {Detected(0, "B", "P", "1", "2")});
    EXPECT_EQ(detectedproductsInit(), OAM_SUCCESS);
    EXPECT_EQ(DetectedBoardsGetCount(), 1);
}

TEST_F(Detection, KeptFailureEmptiesTheProducts) {
    const CPlugin* plugin = AddPlugin();
    Show("a.bpi", "1", {Detected(0, "B", "P", "1", "2")});
    for (const char* step : {"OpenObject", "CloseObject"}) {
        EXPECT_EQ(products().Insert("Prod", plugin), OAM_SUCCESS);
        doors.Answer(step, oam_result(0x42));
        EXPECT_EQ(detectedproductsInit(), oam_result(0x42)) << step;
        EXPECT_EQ(ProductsGetCount(), 0);
        doors.Reset();
    }
    EXPECT_EQ(DetectedBoardsGetCount(), 1) << "what was detected before the failed closing";
}

TEST_F(Detection, FieldOutsideOneToFourAndIndexOutsideTheListAreNull) {
    AddPlugin();
    Show("a.bpi", "1", {Detected(0, "B", "P", "1", "2")});
    EXPECT_EQ(detectedproductsInit(), OAM_SUCCESS);
    EXPECT_EQ(DetectedBoardsGetAt(0, 0), nullptr);
    EXPECT_EQ(DetectedBoardsGetAt(0, 5), nullptr);
    EXPECT_EQ(DetectedBoardsGetAt(1, 1), nullptr);
    EXPECT_EQ(DetectedBoardsGetAt(-1, 1), nullptr);
}

TEST_F(Detection, NumbersShareOneText) {
    AddPlugin();
    Show("a.bpi", "2", {Detected(0, "A", "P", "1", "2"), Detected(1, "B", "P", "3", "4")});
    EXPECT_EQ(detectedproductsInit(), OAM_SUCCESS);
    const char* bus = DetectedBoardsGetAt(0, 3);
    EXPECT_STREQ(bus, "1");
    const char* slot = DetectedBoardsGetAt(1, 4);
    EXPECT_EQ(bus, slot);
    EXPECT_STREQ(bus, "4");
}

TEST_F(Detection, PluginLooksWithNoLockHeld) {
    AddPlugin();
    Show("a.bpi", "0", {});
    doors.On("p1.DetectBoards", [] {
        EXPECT_FALSE(HoldsDatabaseLock());
        return OAM_SUCCESS;
    });
    EXPECT_EQ(detectedproductsInit(), OAM_SUCCESS);
}

TEST_F(Detection, WithoutMemoryLosesBoardsButNeverHalfOfOne) {
    AddPlugin();
    Show("a.bpi", "2", {Detected(0, "A", "P", "1", "2"), Detected(1, "B", "P", "3", "4")});
    EXPECT_EQ(FailEachAllocation([&] { return detectedproductsInit(); },
                                 [&](oam_result) {
                                     for (const std::string& row : Rows()) {
                                         EXPECT_TRUE(row == "A|P|1|2" || row == "B|P|3|4") << row;
                                     }
                                 }),
              OAM_SUCCESS);
    EXPECT_EQ(DetectedBoardsGetCount(), 2);
}

}  // namespace
}  // namespace oam::test
