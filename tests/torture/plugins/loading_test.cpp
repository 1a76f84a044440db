// One of three modules cannot be loaded: whether it is the first, the second or the last, and
// whatever is wrong with it, the start answers a code, the others are ended in order, and work when
// it is gone.
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "figures.h"
#include "module_log.h"
#include "support/objects.h"
#include "trial.h"

namespace oam::torture {
namespace {

constexpr std::size_t kQuickOneIn = 3;
constexpr unsigned kOwnCode = 0x1234ABCD;
constexpr const char* kFiles[] = {"one", "two", "six"};

struct Kind {
    const char* name;
    const char* suffix;
    const char* source;  // of the log's lines
    int stage;
    std::vector<std::string> required;
};

const Kind& plugin() {
    static const Kind kKind = {
        "Plugin",
        ".bpi",
        "Plug-in",
        test::kPluginStage,
        {"Init", "Exit", "DetectBoards", "CreateBoard", "DestroyBoard", "OpenObject", "CloseObject",
         "SetKeyword", "GetKeyword", "GetQualifier", "StartBoard", "StopBoard", "TestBoard",
         "SendBuffer"}};
    return kKind;
}

const Kind& component() {
    static const Kind kKind = {"Component",
                               ".emc",
                               "Emc",
                               test::kComponentStage,
                               {"Init", "Exit", "GetText", "AlertReceive", "OpenObject",
                                "CloseObject", "SetKeyword", "GetKeyword", "GetQualifier"}};
    return kKind;
}

// What is wrong with one file, and what comes of it.
struct Fault {
    std::string name;
    std::string without;  // the entry that is missing
    bool isLibrary = true;
    std::function<unsigned()> init = nullptr;
    unsigned code = test::kNoSymbol;
};

std::vector<Fault> faultsOf(const Kind& kind) {
    std::vector<Fault> faults;
    for (const std::string& entry : kind.required) faults.push_back({"without " + entry, entry});
    faults.push_back({"no library", "", false, nullptr, test::kCannotLoad});
    faults.push_back({"refusing in Init", "", true, [] { return kOwnCode; }, kOwnCode});
    faults.push_back({"refusing in Init as the service does", "", true,
                      [] { return unsigned{OAMERR_ALREADY_EXISTS}; }, OAMERR_ALREADY_EXISTS});
    faults.push_back({"throwing in Init", "", true,
                      []() -> unsigned { throw std::runtime_error("no"); }, OAM_REASON_FAILED});
    faults.push_back(
        {"throwing a number in Init", "", true, []() -> unsigned { throw 5; }, OAM_REASON_FAILED});
    return faults;
}

std::string pathOf(const test::Installation& home, const std::string& file) {
    return home.Path("lib/" + file);
}

class FaultyLoad {
  public:
    FaultyLoad(const test::Installation& home, const Kind& kind, const Fault& fault,
               std::size_t place)
        : home_(home), kind_(kind), fault_(fault), place_(place) {
        for (const std::string& name : test::DirectoryOrder(home.Path("lib")))
            if (name.ends_with(kind.suffix)) order_.push_back(name);
        if (!fault.isLibrary) {
            home.Write("lib/" + Faulty(), "not a library");
        } else if (!fault.without.empty()) {
            home.AddModule("without_" + fault.without + kind.suffix, Faulty());
        } else {
            recorder_.Script(Faulty(), [&](test::ModuleScript& script) {
                script.init = [&](const char*) { return fault_.init(); };
            });
        }
        for (const std::string& file : order_) {
            recorder_.Script(file,
                             [&](test::ModuleScript& script) { script.products = {"P " + file}; });
        }
    }

    void ExpectRefused() {
        EXPECT_EQ(NameOfCode(_oamInit()), NameOfCode(fault_.code));
        EXPECT_FALSE(g_bOamIsRunning);
        EXPECT_EQ(CallsOf("Init"), ExpectedInits());
        EXPECT_EQ(CallsOf("Exit"), ExpectedExits());
        const std::string log = home_.Read("oam/log/startup.log");
        EXPECT_EQ(test::StageLines(log, kind_.stage), ExpectedLines());
    }

    // Without the faulty one.
    void ExpectOthersWork() {
        home_.Remove("lib/" + Faulty());
        recorder_.Clear();
        ASSERT_EQ(_oamInit(), OAM_SUCCESS) << home_.Read("oam/log/startup.log");
        std::vector<std::string> others = order_;
        std::erase(others, Faulty());
        EXPECT_EQ(CallsOf("Init"), others);
        for (const std::string& file : others) {
            EXPECT_EQ(test::KeywordOf(file, "Name"), test::Is(file));
            if (&kind_ == &plugin()) {
                EXPECT_EQ(_oamStartBoard(test::CreateBoard("P " + file).c_str(), OAM_SYNCHRONIZED),
                          OAM_SUCCESS);
            }
        }
        EXPECT_EQ(test::Raise(OAMEVN_TRACE, 0, "Test", "who is there"), OAM_SUCCESS);
        EXPECT_EQ(_oamExit(), OAM_SUCCESS);
        std::sort(others.begin(), others.end());
        EXPECT_EQ(CallsOf("Exit"), others);
    }

  private:
    const std::string& Faulty() const { return order_[place_]; }

    std::vector<std::string> CallsOf(const std::string& entry) const {
        std::vector<std::string> files;
        for (const test::RecordedCall& call : recorder_.Calls(entry))
            if (call.file.ends_with(kind_.suffix)) files.push_back(call.file);
        return files;
    }
    std::vector<std::string> Before() const {
        return {order_.begin(), order_.begin() + static_cast<long>(place_)};
    }
    bool IsInitialised() const { return fault_.isLibrary && fault_.without.empty(); }
    // The entries are bound in order, Exit second.
    bool IsEnded() const {
        return fault_.isLibrary && fault_.without != "Init" && fault_.without != "Exit";
    }
    std::vector<std::string> ExpectedInits() const {
        std::vector<std::string> files = Before();
        if (IsInitialised()) files.push_back(Faulty());
        return files;
    }
    std::vector<std::string> ExpectedExits() const {
        std::vector<std::string> files = Before();
        if (IsEnded()) files.push_back(Faulty());
        std::sort(files.begin(), files.end());
        return files;
    }
    std::string ExpectedLines() const {
        std::string lines;
        for (const std::string& file : Before())
            lines += test::LoadingLine(kind_.source, pathOf(home_, file)) +
                     test::DoneLine(kind_.source, file);
        return lines + test::LoadingLine(kind_.source, pathOf(home_, Faulty())) +
               test::FailedLine(kind_.source, fault_.code);
    }

    const test::Installation& home_;
    const Kind& kind_;
    const Fault& fault_;
    const std::size_t place_;
    std::vector<std::string> order_;  // of the directory
    test::Recorder recorder_;
    test::AlertLog alerts_;
};

// Three of the kind and a sound one of the other.
void furnish(const test::Installation& home, const Kind& kind) {
    for (const char* file : kFiles)
        home.AddModule(std::string("recorder") + kind.suffix, std::string(file) + kind.suffix);
    const char* other = &kind == &plugin() ? ".emc" : ".bpi";
    home.AddModule(std::string("recorder") + other, std::string("sound") + other);
}

class FaultyModule : public testing::TestWithParam<std::size_t> {
  protected:
    void Try(const Kind& kind, std::size_t shift) {
        const std::vector<Fault> faults = faultsOf(kind);
        const char* const places[] = {"first", "second", "last"};
        CountPoints(faults.size());
        for (const std::size_t i : ShareOf(faults.size(), kQuickOneIn, shift + GetParam())) {
            TryCase(
                std::string(places[GetParam()]) + ' ' + kind.name + ' ' + faults[i].name,
                [&](const test::Installation& home) { furnish(home, kind); },
                [&](const test::Installation& home, const Watched& watched) {
                    FaultyLoad load(home, kind, faults[i], GetParam());
                    watched.Doing("a start that is to fail");
                    load.ExpectRefused();
                    watched.Doing("a start without the faulty one");
                    load.ExpectOthersWork();
                });
        }
    }
};

TEST_P(FaultyModule, AmongPluginsStopsTheStartAndNothingElse) { Try(plugin(), 0); }

TEST_P(FaultyModule, AmongComponentsStopsTheStartAndNothingElse) { Try(component(), 1); }

INSTANTIATE_TEST_SUITE_P(InEachPlace, FaultyModule, testing::Values(0, 1, 2), [](const auto& row) {
    return std::string(row.param == 0 ? "First" : row.param == 1 ? "Second" : "Last");
});

}  // namespace
}  // namespace oam::torture
