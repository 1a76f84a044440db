#include "bench.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "entry_call.h"
#include "finding.h"
#include "judged_entries.h"
#include "opened_object.h"
#include "shown.h"

namespace oam::check {
namespace {

constexpr std::size_t kMostProducts = 8;

using Name = std::array<char, 128>;

}  // namespace

bool Bench::Next() {
    if (++step_ < firstStep_) return false;
    journal_.step = step_;
    journal_.Progress();
    return true;
}

bool Bench::Start() {
    const oam_result failed = Service().Init();
    if (failed) TellFailedStart(failed);
    if (failed) return false;
    journal_.isUsable = true;
    hasStarted_ = true;
    return true;
}

void Bench::TellFailedStart(oam_result failed) const {
    if (const auto result = CallHistory::LastResult(Entry::Init)) {
        Tell(hasStarted_ ? Rule::InitAgain : Rule::Init, Entry::Init,
             "it answered " + judged::NamedCode(result));
        return;
    }
    // What has been told explains it.
    if (FindingSender::HasToldAny()) return;
    const std::string last = CallHistory::LastFailure();
    const bool isElement = last.find("[") != std::string::npos;
    Tell(isElement ? Rule::Counts : Rule::Starts, isElement ? "GetKeyword" : "",
         "the start failed with " + CodeText(failed) + (last.empty() ? "" : "; " + last));
}

std::vector<std::string> Bench::Products() const {
    std::vector<std::string> products;
    const OpenedObject own(question_.fileName, OAM_OPEN_READ);
    if (!IsPlugin() || own.Failure()) return products;
    const std::string text = own.Get("Products.Count").value_or("0");
    std::size_t count = 0;
    std::from_chars(text.data(), text.data() + text.size(), count);
    for (std::size_t i = 0; i < std::min(count, kMostProducts); ++i)
        if (auto name = own.Get("Products[" + std::to_string(i) + "]"))
            products.push_back(std::move(*name));
    return products;
}

std::string Bench::CreateBoard(const std::string& product) const {
    Name name;
    const oam_result failed = Service().CreateBoard(product.c_str(), name.data(), name.size());
    if (!failed) return name.data();
    const auto refused = CallHistory::LastResult(Entry::CreateBoard);
    Tell(Rule::Creates, Entry::CreateBoard,
         Quoted(product) + ": " +
             (refused ? "it answered " + CodeText(refused)
                      : "the board was not made, " + CodeText(failed) + "; " +
                            CallHistory::LastFailure()));
    return "";
}

std::vector<std::string> Bench::CreateBoards() const {
    std::vector<std::string> boards;
    for (const auto& product : Products()) {
        auto board = CreateBoard(product);
        if (!board.empty()) boards.push_back(std::move(board));
    }
    return boards;
}

std::vector<std::string> Bench::Objects() const {
    std::vector<std::string> objects = {question_.fileName};
    Name name;
    for (int i = 0; !Service().BoardEnum(i, name.data(), name.size()); ++i)
        objects.emplace_back(name.data());
    return objects;
}

}  // namespace oam::check
