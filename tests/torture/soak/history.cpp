#include "history.h"

#include <algorithm>
#include <optional>

#include "oam/codes.h"

namespace oam::torture {
namespace {

bool isPlaced(const Step* step) { return step->place != 0; }
bool isUnderWay(const Step* step) { return step->code == Step::kUnderWay; }
bool isAcknowledged(const Step* step) { return step->code == OAM_SUCCESS; }

std::optional<Configuration> changed(Configuration made, const Step& step) {
    const auto found = made.boards.find(step.object);
    if (found == made.boards.end() || found->second.stamp != step.basis) return std::nullopt;
    Board board = found->second;
    board.stamp = step.stamp;
    made.boards.erase(found);
    const char* name = step.newName[0] != '\0' ? step.newName : step.object;
    if (!made.boards.emplace(name, board).second) return std::nullopt;
    return made;
}

// The configuration after the step, when the step could have happened in it.
std::optional<Configuration> after(const Configuration& before, const Step& step,
                                   const Saves& saves) {
    Configuration made = before;
    switch (step.verb) {
        case Verb::kCreate:
            if (!made.boards.emplace(step.object, Board{step.stamp, step.stamp}).second)
                return std::nullopt;
            return made;
        case Verb::kChange:
            return changed(std::move(made), step);
        case Verb::kDelete:
            if (made.boards.erase(step.object) == 0) return std::nullopt;
            return made;
        case Verb::kSettings:
            if (made.settings != step.basis) return std::nullopt;
            made.settings = static_cast<unsigned>(step.stamp);
            return made;
        case Verb::kImport: {
            const auto save = saves.find(step.object);
            if (save == saves.end()) return std::nullopt;
            return save->second;
        }
        case Verb::kExport:
            return made;
    }
    return std::nullopt;
}

// Goes through the placed steps and keeps every configuration that may be there.
class Passage {
  public:
    Passage(const std::vector<Configuration>& before, const Steps& steps, const Saves& saves)
        : possible_(before), steps_(steps), saves_(saves) {}

    Verdict Take() {
        Steps placed;
        std::copy_if(steps_.begin(), steps_.end(), std::back_inserter(placed), &isPlaced);
        std::sort(placed.begin(), placed.end(),
                  [](const Step* left, const Step* right) { return left->place < right->place; });
        for (const Step* step : steps_) CheckAnswer(*step);
        Compare(0, placed.empty() ? ~std::uint64_t{0} : placed.front()->place - 1);
        for (std::size_t i = 0; i < placed.size() && fault_.empty(); ++i) {
            Pass(*placed[i]);
            const bool isLast = i + 1 == placed.size();
            Compare(placed[i]->place, isLast ? ~std::uint64_t{0} : placed[i + 1]->place - 1);
        }
        for (const Step* step : steps_) {
            const bool isExport = step->verb == Verb::kExport && saves_.count(step->object) != 0;
            if (isExport && isAcknowledged(step) && explained_.count(step) == 0)
                Fault("holds what never was, " + TextOf(saves_.at(step->object)), *step);
        }
        return {
            possible_, fault_,
            static_cast<std::size_t>(std::count_if(steps_.begin(), steps_.end(), &isAcknowledged)),
            static_cast<std::size_t>(std::count_if(placed.begin(), placed.end(), &isUnderWay))};
    }

  private:
    void Fault(const std::string& what, const Step& step) {
        if (fault_.empty()) fault_ = TextOf(step) + ' ' + what + '\n';
    }

    void Pass(const Step& step) {
        std::vector<Configuration> possible;
        for (const Configuration& before : possible_) {
            if (isUnderWay(&step)) possible.push_back(before);
            if (auto made = after(before, step, saves_)) possible.push_back(*std::move(made));
        }
        if (possible.empty()) {
            std::string text = "cannot have happened in any of\n";
            for (const Configuration& before : possible_) text += TextOf(before);
            Fault(text, step);
        }
        possible_ = std::move(possible);
    }

    // An export is refused while an object is open for a change, so it holds exactly what the steps
    // up to one place have made: a place that was given away while it ran.
    void Compare(std::uint64_t from, std::uint64_t to) {
        for (const Step* step : steps_) {
            if (step->verb != Verb::kExport || !isAcknowledged(step)) continue;
            const auto save = saves_.find(step->object);
            if (save == saves_.end() || step->begun > to || step->ended < from) continue;
            if (std::count(possible_.begin(), possible_.end(), save->second) != 0)
                explained_[step] = true;
        }
    }

    void CheckAnswer(const Step& step) {
        if (isUnderWay(&step)) return;
        if (isAcknowledged(&step)) {
            if (!isPlaced(&step) && step.verb != Verb::kExport)
                Fault("was acknowledged and never happened", step);
            return;
        }
        if (isPlaced(&step)) return Fault("was refused after it had begun", step);
        const bool isBusy = step.code == OAMERR_ACCESS_DENIED && step.verb != Verb::kCreate;
        const bool isGone = step.code == OAMERR_NOT_FOUND &&
                            (step.verb == Verb::kChange || step.verb == Verb::kDelete) &&
                            IsImportWithin(step);
        if (!isBusy && !isGone) Fault("was refused without a reason", step);
    }

    bool IsImportWithin(const Step& step) const {
        return std::any_of(steps_.begin(), steps_.end(), [&](const Step* other) {
            return other->verb == Verb::kImport && other->place > step.begun &&
                   other->place <= step.ended;
        });
    }

    std::vector<Configuration> possible_;
    const Steps& steps_;
    const Saves& saves_;
    std::string fault_;
    std::map<const Step*, bool> explained_;
};

}  // namespace

Steps StepsOf(const Oracle& oracle) {
    Steps steps;
    for (const Lane& lane : oracle.lanes)
        for (std::size_t i = 0; i < lane.Count(); ++i) steps.push_back(&lane.At(i));
    return steps;
}

Verdict Judge(const std::vector<Configuration>& before, const Steps& steps, const Saves& saves) {
    return Passage(before, steps, saves).Take();
}

}  // namespace oam::torture
