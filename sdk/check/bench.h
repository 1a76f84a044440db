// What a stage of the check works with, in the judged child: the module in question, the stage's
// steps, and the service with the module in it.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "call_journal.h"
#include "module_kind.h"
#include "service.h"

namespace oam::check {

class Bench {
  public:
    struct Question {
        std::string module;    // the path of the copy in the installation
        std::string fileName;  // without directory: also the module's object
        ModuleKind kind;
        std::chrono::milliseconds limit;  // for one call
    };

    Bench(Question question, CallJournal& journal, int firstStep)
        : question_(std::move(question)), journal_(journal), firstStep_(firstStep) {}

    const Question& Asked() const { return question_; }
    bool IsPlugin() const { return question_.kind == ModuleKind::Plugin; }

    // For an outcome that must come: longer than the watchdog waits for a call.
    std::chrono::milliseconds Patience() const {
        return question_.limit + std::chrono::seconds(10);
    }

    // Tells the watchdog that a long step goes on.
    void Moves() { journal_.Progress(); }

    // True when the next step is to be made. A stage that died in a step is run again from the step
    // behind it; so a step relies on no other.
    bool Next();

    // Starts the service with the module. A failure is told.
    bool Start();
    void Stop() { (void)Service().Exit(); }

    // The products that the module serves, as the service read them.
    std::vector<std::string> Products() const;
    // Creates a board; its name, or "" and a finding.
    std::string CreateBoard(const std::string& product) const;
    // One board of every product, those that exist already too.
    std::vector<std::string> CreateBoards() const;
    // Every object that the module serves: its own and its boards.
    std::vector<std::string> Objects() const;

  private:
    void TellFailedStart(oam_result failed) const;

    Question question_;
    CallJournal& journal_;
    int firstStep_;
    int step_ = -1;
    bool hasStarted_ = false;
};

}  // namespace oam::check
