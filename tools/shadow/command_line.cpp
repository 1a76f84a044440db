#include "command_line.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "board_output.h"
#include "console.h"
#include "failure.h"
#include "number_option.h"
#include "shadow_reader.h"
#include "watch_loop.h"

namespace oam::shadow {
namespace {

constexpr unsigned kUsualInterval = 1000;
constexpr unsigned kLongestInterval = 3600000;

constexpr const char* kSummary =
    "Looks at the board shadow: the copy of the server's board table in shared memory. It needs\n"
    "no running server; the shadow keeps what the last one published. It holds the first 31\n"
    "boards in name order.";

constexpr const char* kFooter =
    "\nExit status: 0 done, 1 not found or unreadable, 2 wrong use."
    "\nExamples:"
    "\n  oam-shadow list --json"
    "\n  oam-shadow lookup --number 3"
    "\n  oam-shadow lookup --driver qx --board-id 0"
    "\n  oam-shadow watch --interval 200 --count 1";

struct Wanted {
    std::string name;
    unsigned number = 0;
    std::string driverName;
    std::string boardId;
};

std::function<void(unsigned)> storeIn(unsigned* place) {
    return [place](unsigned number) { *place = number; };
}

class Program {
  public:
    Program() : app_(kSummary, "oam-shadow") {
        app_.fallthrough();
        app_.require_subcommand(1);
        app_.footer(kFooter);
        app_.add_flag("--json", json_, "Answer in JSON: one object, or one a line for watch");
        app_.add_option("--shm-dir", directory_,
                        "Where the shared memory lies (default: KOR_SHM_DIR, else /dev/shm)")
            ->type_name("DIR")
            ->check(CLI::ExistingDirectory);
        app_.add_subcommand("list", "All boards of the shadow")->callback([this] { List(); });
        AddLookup();
        AddWatch();
    }

    // CLI11 runs the chosen command from within; what it throws comes out here.
    int Execute(int argc, char** argv) {
        try {
            app_.parse(argc, argv);
            return kDone;
        } catch (const CLI::ParseError& error) {
            return app_.exit(error) == 0 ? kDone : kUsage;
        } catch (const Failure& failure) {
            std::fprintf(stderr, "oam-shadow: %s\n", failure.what());
            return kFailed;
        }
    }

  private:
    void AddLookup() {
        auto* const lookup = app_.add_subcommand("lookup", "One board, by one of its identities");
        auto* const name = lookup->add_option("--name", wanted_.name, "The board's name");
        auto* const number =
            AddNumber(*lookup, "--number", storeIn(&wanted_.number), {}, "The board's number");
        auto* const driver =
            lookup->add_option("--driver", wanted_.driverName, "The driver's name");
        auto* const boardId = lookup->add_option("--board-id", wanted_.boardId,
                                                 "The board's identifier within the driver");
        driver->needs(boardId);
        boardId->needs(driver);
        name->excludes(number, driver);
        number->excludes(driver);
        lookup->callback([=, this] {
            if (name->count()) return Show(&ShadowReader::FindByName, wanted_.name);
            if (number->count()) return Show(&ShadowReader::FindByNumber, wanted_.number);
            if (!driver->count()) throw CLI::RequiredError("--name, --number or --driver");
            Show(&ShadowReader::FindByDriverIds, wanted_.driverName, wanted_.boardId);
        });
    }

    void AddWatch() {
        auto* const watch = app_.add_subcommand("watch", "Print what changes in the shadow");
        AddNumber(*watch, "--interval", storeIn(&interval_), {1, kLongestInterval},
                  "Milliseconds between two looks (default: 1000)");
        AddNumber(*watch, "--count", storeIn(&count_), {1, 0xffffffff}, "End after N differences");
        watch->callback([this] { Watch(); });
    }

    void UseDirectory() const {
        if (directory_.empty()) return;
        const auto path = std::filesystem::absolute(directory_).string();
        if (setenv("KOR_SHM_DIR", path.c_str(), 1) != 0)
            throw Failure("cannot use directory " + Quoted(path));
    }

    void List() const {
        UseDirectory();
        const Table table = ShadowReader().ReadTable();
        Console console(json_);
        if (json_) {
            console.ShowJson({{"usingVxPlugin", table.isUsingVxPlugin},
                              {"boards", AsJson(boardRows(table.boards))}});
        } else {
            console.Show("boards", boardRows(table.boards));
        }
        console.Flush();
    }

    template <class Find, class... Identity>
    void Show(Find find, const Identity&... identity) const {
        UseDirectory();
        const ShadowReader reader;
        const Board board = (reader.*find)(identity...);
        Console console(json_);
        console.Show(boardRecord(board));
        console.Flush();
    }

    void Watch() const {
        UseDirectory();
        Console console(json_);
        watchTable({.interval = std::chrono::milliseconds(interval_), .count = count_}, console);
    }

    CLI::App app_;
    bool json_ = false;
    std::string directory_;
    Wanted wanted_;
    unsigned interval_ = kUsualInterval;
    unsigned count_ = 0;
};

}  // namespace

int execute(int argc, char** argv) { return Program().Execute(argc, argv); }

}  // namespace oam::shadow
