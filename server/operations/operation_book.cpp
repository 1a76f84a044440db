#include "operations/operation_book.h"

#include <algorithm>
#include <new>
#include <utility>

#include "oam/codes.h"
#include "oam/message.h"
#include "operations/operation_entry.h"
#include "store/bell.h"
#include "store/moment.h"

namespace oam::server {
namespace {

// In the order of OperationKind.
struct Outcome {
    std::uint32_t event;
    const char* sameRunning;  // the text of that refusal
};
constexpr Outcome kOutcomes[] = {
    {OAMEVN_STARTBOARD_DONE, "Board is currently being started."},
    {OAMEVN_STOPBOARD_DONE, "Board is currently being stopped."},
    {OAMEVN_TESTBOARD_DONE, "Board is currently being tested."},
};

const Outcome* outcomeOf(std::uint32_t event) {
    for (const Outcome& outcome : kOutcomes)
        if (outcome.event == event) return &outcome;
    return nullptr;
}

}  // namespace

OperationBook::OperationBook(std::uint64_t start, std::size_t kept, Bell* bell)
    : start_(start), kept_(std::max<std::size_t>(kept, 1)), bell_(bell) {}

OperationBook::~OperationBook() = default;

// ---- What the callers do

OperationRecord OperationBook::Begin(OperationKind kind, const std::string& board,
                                     const std::string& user) {
    const auto entry = std::make_shared<Entry>();
    entry->names.push_back(board);
    OperationRecord& record = entry->record;
    record.kind = kind;
    record.board = board;
    record.user = user;
    record.requested = MomentNow();
    Entries one{entry};
    entry->place = one.begin();

    OperationRecord answer;
    Ending ending;
    {
        const std::lock_guard hold(mutex_);
        entry->id = {start_, given_ + 1};
        record.id = entry->idForAlert = entry->id.Text();
        answer = record;
        entries_.emplace(entry->id, entry);
        running_.splice(running_.end(), one);
        ++given_;
        NoteChange(*entry);
        if (running_.size() > kMostRunning) ending = GiveUpOldest("no outcome was ever told");
    }
    ending.Call();
    return answer;
}

void OperationBook::Refuse(const std::string& id, std::uint32_t code, const std::string& text) {
    Ending ending;
    {
        const std::lock_guard hold(mutex_);
        const auto entry = FindEntry(id);
        if (entry == nullptr || entry->record.state != OperationState::kRunning) return;
        entry->record.text = text;
        entry->record.code = code;
        End(*entry, OperationState::kRefused);
        ending = Conclude(*entry);
    }
    ending.Call();
}

void OperationBook::GiveUpRunning(const std::string& text) {
    for (;;) {
        Ending ending;
        {
            const std::lock_guard hold(mutex_);
            if (running_.empty()) return;
            ending = GiveUpOldest(text);
        }
        ending.Call();
    }
}

// ---- What the service tells

std::string OperationBook::OnAlert(const StoredAlert& alert) noexcept {
    const Outcome* const outcome = outcomeOf(alert.code);
    if (outcome == nullptr && alert.code != OAMEVN_RENAMED) return {};

    const std::lock_guard hold(mutex_);
    if (outcome == nullptr) {
        NoteRename(alert);
        return {};
    }
    const auto kind = static_cast<OperationKind>(outcome - kOutcomes);
    Entry* oldest = nullptr;
    Entry* newest = nullptr;
    for (const auto& entry : running_) {
        if (entry->record.kind != kind || !entry->IsOn(alert.source)) continue;
        newest = entry.get();
        if (oldest == nullptr) oldest = newest;
    }
    if (oldest == nullptr) return {};
    const bool isSameRunning = alert.text == outcome->sameRunning;
    if (isSameRunning && oldest == newest) {
        oldest->SetText(alert.text);
        NoteChange(*oldest);
        return {};
    }
    Entry& entry = isSameRunning ? *newest : *oldest;
    entry.SetText(alert.text);
    End(entry, alert.severity == OAM_INFORMATION ? OperationState::kDone : OperationState::kFailed);
    return std::move(entry.idForAlert);
}

// The alert's source is the new name and its text the old one.
void OperationBook::NoteRename(const StoredAlert& alert) {
    for (const auto& entry : running_) {
        if (!isSameName(entry->names.back(), alert.text)) continue;
        try {
            entry->names.push_back(alert.source);
        } catch (const std::bad_alloc&) {
            // The service tells outcomes under the name that was asked for.
        }
    }
}

void OperationBook::Number(const std::string& id, std::uint64_t sequence) noexcept {
    Ending ending;
    {
        const std::lock_guard hold(mutex_);
        const auto entry = FindEntry(id);
        if (entry == nullptr || entry->isConcluded ||
            entry->record.state == OperationState::kRunning)
            return;
        entry->record.sequence = sequence;
        ending = Conclude(*entry);
    }
    ending.Call();
}

// ---- Endings

void OperationBook::End(Entry& entry, OperationState state) noexcept {
    entry.record.state = state;
    if (state != OperationState::kUnknown) entry.record.ended = MomentNow();
    const auto kind = static_cast<std::size_t>(entry.record.kind);
    ++totals_.ended[kind][static_cast<std::size_t>(state)];
    if (state == OperationState::kDone || state == OperationState::kFailed) {
        const std::chrono::duration<double> lasted = *entry.record.ended - entry.record.requested;
        totals_.durations[kind].Observe(std::max(lasted.count(), 0.0));  // clocks are set back
    }
    ended_.splice(ended_.end(), running_, entry.place);
}

OperationBook::Ending OperationBook::GiveUpOldest(std::string_view text) noexcept {
    Entry& entry = *running_.front();
    entry.SetText(text);
    End(entry, OperationState::kUnknown);
    return Conclude(entry);
}

OperationBook::Ending OperationBook::Conclude(Entry& entry) noexcept {
    entry.isConcluded = true;
    Ending ending{*entry.place, std::move(entry.waits)};
    entry.waits.clear();
    for (const auto& wait : ending.waits) waits_.erase(wait.first);
    NoteChange(entry);
    ForgetOldest();
    return ending;
}

void OperationBook::ForgetOldest() noexcept {
    while (ended_.size() > kept_ && ended_.front()->isConcluded) {
        const std::shared_ptr<Entry> oldest = ended_.front();
        if (oldest->isChanged) changed_.erase(oldest->change);
        entries_.erase(oldest->id);
        ended_.pop_front();
    }
}

void OperationBook::NoteChange(Entry& entry) noexcept {
    changed_.splice(changed_.end(), entry.isChanged ? changed_ : entry.unchanged, entry.change);
    entry.isChanged = true;
    if (bell_ != nullptr) bell_->Ring();
}

}  // namespace oam::server
