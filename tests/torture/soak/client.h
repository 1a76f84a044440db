// One client thread: random operations on boards of its own and on those that all share, each told
// to the oracle before and after.
//
// Its own boards are of the product "P<n>" and keep that beginning in every name. It asks for their
// names each time, since another client's import may have changed them.
#pragma once

#include <random>
#include <string>
#include <vector>

#include "oracle.h"
#include "plugins/recorder/host.h"

namespace oam::torture {

constexpr unsigned kSharedBoards = 3;
constexpr const char* kSharedProduct = "Shared";
// Exports that go over each other, and the beginning of those that stay.
constexpr const char* kExportFile = "all.oam";
constexpr const char* kSaveFile = "save-";
std::string ProductOf(unsigned lane);

// The plug-in's part: it gives a new board its first marks, and the steps their places.
void ScriptPlugin(test::Recorder& recorder, const std::string& file, Oracle& oracle);

class Client {
  public:
    // Exports go to the directory.
    Client(Oracle& oracle, unsigned lane, unsigned long seed, std::string directory);

    // Until the process is killed.
    [[noreturn]] void Run();

  private:
    void Act();
    void Create();
    void Change(const std::string& board, bool rename);
    void Delete(const std::string& board);
    void ChangeSettings();
    void Export(bool toStay);
    void Import();
    void Read();

    std::vector<std::string> OwnBoards() const;
    std::string SharedBoard();
    // Each step: Begin, what it is about, Told, the call, Done.
    Step& Begin(Verb verb, const std::string& object);
    void Told(Step& step);
    void Done(Step& step, unsigned code);
    unsigned long Random(unsigned long below) { return random_() % below; }

    Oracle& oracle_;
    const unsigned number_;
    Lane& lane_;
    std::mt19937_64 random_;
    const std::string product_;
    const std::string directory_;
    std::uint64_t begun_ = 0;
};

}  // namespace oam::torture
