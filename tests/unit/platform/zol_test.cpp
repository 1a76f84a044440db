#include "zol/zol.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/time.h>

#include <chrono>
#include <clocale>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

class KorDir : public testing::Test {
  protected:
    ~KorDir() override { unsetenv("KOR_DIR"); }

    // What zolGetKorDir answers for this setting, "?" when it fails.
    static std::string With(const std::string& setting, unsigned size = 128, bool flag = false) {
        setenv("KOR_DIR", setting.c_str(), 1);
        std::vector<char> buffer(size + 1, '#');
        if (zolGetKorDir(flag, buffer.data(), size) != 0) {
            const bool untouched = buffer == std::vector<char>(size + 1, '#');
            return untouched ? "?" : "touched";
        }
        return buffer.data();
    }
};

TEST_F(KorDir, IsWhatTheEnvironmentNames) { EXPECT_EQ("/srv/oam", With("/srv/oam")); }

TEST_F(KorDir, IsReadAtEveryCall) {
    EXPECT_EQ("/first", With("/first"));
    EXPECT_EQ("/second", With("/second"));
}

TEST_F(KorDir, FallsBackToTheCompiledDefaultWhenUnsetEmptyOrRelative) {
    unsetenv("KOR_DIR");
    char fallback[128] = "";
    ASSERT_EQ(0, zolGetKorDir(false, fallback, sizeof fallback));
    EXPECT_EQ('/', fallback[0]);
    EXPECT_EQ(fallback, With(""));
    EXPECT_EQ(fallback, With("here/oam"));
    EXPECT_EQ(fallback, With("./oam"));
}

TEST_F(KorDir, DropsTrailingSlashesSoThatTheRootIsEmpty) {
    EXPECT_EQ("/srv/oam", With("/srv/oam/"));
    EXPECT_EQ("/srv//oam", With("/srv//oam///"));
    EXPECT_EQ("", With("/"));
    EXPECT_EQ("", With("////"));
}

TEST_F(KorDir, FailsUntouchedUnlessTextAndTerminatorFit) {
    EXPECT_EQ("?", With("/srv/oam", 0));
    EXPECT_EQ("?", With("/srv/oam", 8));
    EXPECT_EQ("/srv/oam", With("/srv/oam", 9));
    EXPECT_EQ("?", With("/", 0));
    EXPECT_EQ("", With("/", 1));
    EXPECT_EQ("/srv/oam", With("/srv/oam////////", 9));
    EXPECT_NE(0, zolGetKorDir(false, nullptr, 128));
}

TEST_F(KorDir, TakesLongDirectoriesWhole) {
    const std::string directory = "/" + std::string(5000, 'd');
    EXPECT_EQ(directory, With(directory, 5002));
    EXPECT_EQ("?", With(directory, 5001));
    EXPECT_EQ("?", With(directory, 128));
}

TEST_F(KorDir, IsTheSameForBothFlags) {
    EXPECT_EQ("/srv/oam", With("/srv/oam/", 128, true));
    EXPECT_EQ("?", With("/srv/oam", 8, true));
}

TEST(FunctionAddr, IsFoundInALoadedLibrary) {
    void* library = dlopen("libzol.so", RTLD_LAZY | RTLD_NOLOAD);
    ASSERT_NE(nullptr, library);
    void* address = nullptr;
    EXPECT_EQ(0U, zolGetFunctionAddr(library, "zolSleepMs", &address));
    EXPECT_EQ(reinterpret_cast<void*>(&zolSleepMs), address);
    dlclose(library);
}

TEST(FunctionAddr, OfAMissingSymbolLeavesTheAddressUntouched) {
    void* library = dlopen("libzol.so", RTLD_LAZY | RTLD_NOLOAD);
    ASSERT_NE(nullptr, library);
    void* address = &library;
    EXPECT_EQ(0xf0028U, zolGetFunctionAddr(library, "zolNoSuchFunction", &address));
    EXPECT_EQ(ZOL_NO_SYMBOL, zolGetFunctionAddr(library, nullptr, &address));
    EXPECT_EQ(ZOL_NO_SYMBOL, zolGetFunctionAddr(library, "", &address));
    EXPECT_EQ(&library, address);
    EXPECT_EQ(ZOL_NO_SYMBOL, zolGetFunctionAddr(library, "zolSleepMs", nullptr));
    dlclose(library);
}

TEST(FunctionAddr, OfNoLibraryIsNotSearchedInTheProgram) {
    void* address = nullptr;
    EXPECT_EQ(ZOL_NO_SYMBOL, zolGetFunctionAddr(nullptr, "zolSleepMs", &address));
    EXPECT_EQ(nullptr, address);
}

volatile sig_atomic_t s_interruptions = 0;
void countInterruption(int) { s_interruptions = s_interruptions + 1; }

// Interrupts whatever waits, every few milliseconds.
class Interruptions {
  public:
    Interruptions() {
        struct sigaction action {};
        action.sa_handler = countInterruption;
        sigaction(SIGALRM, &action, &before_);
        const itimerval often{{0, 3000}, {0, 3000}};
        setitimer(ITIMER_REAL, &often, nullptr);
    }
    ~Interruptions() {
        const itimerval never{};
        setitimer(ITIMER_REAL, &never, nullptr);
        sigaction(SIGALRM, &before_, nullptr);
    }

  private:
    struct sigaction before_ {};
};

TEST(Sleep, LastsTheWholeTimeWhenSignalsInterrupt) {
    s_interruptions = 0;
    const Interruptions interruptions;
    const auto begin = steady_clock::now();
    zolSleepMs(60);
    EXPECT_GE(steady_clock::now() - begin, milliseconds(60));
    const auto middle = steady_clock::now();
    zolSleep(1);
    EXPECT_GE(steady_clock::now() - middle, milliseconds(1000));
    EXPECT_GT(s_interruptions, 0);
}

TEST(Sleep, OfZeroReturns) {
    zolSleepMs(0);
    zolSleep(0);
}

int sign(int value) { return (value > 0) - (value < 0); }

TEST(Compare, FoldsTheLettersOfTheAlphabetAndNoOtherByte) {
    for (int left = 1; left < 256; ++left) {
        for (int right = 1; right < 256; ++right) {
            const auto fold = [](int byte) {
                return byte >= 'A' && byte <= 'Z' ? byte + 32 : byte;
            };
            const char leftText[] = {static_cast<char>(left), '\0'};
            const char rightText[] = {static_cast<char>(right), '\0'};
            const int expected = sign(fold(left) - fold(right));
            ASSERT_EQ(expected, sign(zolStricmp(leftText, rightText))) << left << " " << right;
            ASSERT_EQ(expected, sign(zolStrnicmp(leftText, rightText, 1))) << left << " " << right;
        }
    }
}

TEST(Compare, IsTheSameInEveryLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* locale :
         {"tr_TR.UTF-8", "tr_TR.ISO-8859-9", "tr_TR", "de_DE.ISO-8859-1", "C.UTF-8", "C", ""}) {
        if (std::setlocale(LC_ALL, locale) == nullptr) continue;
        EXPECT_EQ(0, zolStricmp("TITLE", "title")) << locale;
        EXPECT_EQ(0, zolStricmp("IiIi", "iIiI")) << locale;
        EXPECT_NE(0, zolStricmp("\xC4", "\xE4")) << locale;
        EXPECT_NE(0, zolStricmp("\xDD", "i")) << locale;
    }
    std::setlocale(LC_ALL, before.c_str());
}

TEST(Compare, OrdersAPrefixFirst) {
    EXPECT_LT(zolStricmp("board", "Board 1"), 0);
    EXPECT_GT(zolStricmp("BOARD 1", "board"), 0);
    EXPECT_LT(zolStricmp("a", "\x80"), 0);
    EXPECT_GT(zolStricmp("Z", "["), 0);
    EXPECT_LT(zolStricmp("_", "A"), 0);
}

TEST(Compare, StopsAtTheCount) {
    EXPECT_EQ(0, zolStrnicmp("Location.PCI", "location.isa", 9));
    EXPECT_NE(0, zolStrnicmp("Location.PCI", "location.isa", 10));
    EXPECT_EQ(0, zolStrnicmp("a", "b", 0));
    EXPECT_EQ(0, zolStrnicmp("same", "SAME", ~0UL));
    EXPECT_GT(zolStrnicmp("longer", "long", 6), 0);
    const char unterminated[] = {'A', 'b'};
    EXPECT_EQ(0, zolStrnicmp(unterminated, "aB and more", 2));
}

TEST(Compare, TakesANullForTheEmptyText) {
    EXPECT_EQ(0, zolStricmp(nullptr, nullptr));
    EXPECT_EQ(0, zolStricmp(nullptr, ""));
    EXPECT_LT(zolStricmp(nullptr, "a"), 0);
    EXPECT_GT(zolStrnicmp("a", nullptr, 1), 0);
    EXPECT_EQ(0, zolStrnicmp("a", nullptr, 0));
}

}  // namespace
