// Keyword names of the Supervisor, which computes most of its keywords instead of storing them, and
// their qualifiers, asked of a running service.
//
// The input's first line is the keyword, the rest the qualifier. For any two texts each answer is
// OAM_SUCCESS, or OAMERR_NOT_FOUND, or OAMERR_NOT_ENOUGH_MEMORY when the buffer is too small; a
// failure leaves the buffer alone; a null buffer tells whether there is an answer; letter case does
// not matter; and an array has the elements that it counts, written "[i]" and no other way.
#include <strings.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <string>

#include "fuzz_target.h"
#include "oam/entry.h"
#include "running_service.h"

namespace {

using oam::fuzz::Require;

constexpr char kUntouched = '\x5a';
// What a number needs, however short it is.
constexpr std::size_t kNumberSize = 12;

struct Answer {
    unsigned code = OAM_SUCCESS;
    std::string text;
    bool isWritten = false;
};

template <class Query>
Answer ask(Query query, std::size_t size) {
    // On the heap and of the exact size, so that a sanitizer sees a step beyond it.
    const std::unique_ptr<char[]> buffer(new char[size]);
    std::fill_n(buffer.get(), size, kUntouched);
    Answer answer{query(buffer.get(), static_cast<unsigned>(size)), {}, false};
    answer.isWritten = std::any_of(buffer.get(), buffer.get() + size,
                                   [](char byte) { return byte != kUntouched; });
    Require(answer.code == OAM_SUCCESS || !answer.isWritten, "a failure leaves the buffer alone");
    if (!answer.isWritten) return answer;
    Require(std::memchr(buffer.get(), '\0', size) != nullptr, "an answer ends in its buffer");
    answer.text = buffer.get();
    return answer;
}

template <class Query>
Answer askInAllSizes(Query query, std::size_t plenty) {
    const Answer answer = ask(query, plenty);
    Require(answer.code == OAM_SUCCESS || answer.code == OAMERR_NOT_FOUND, "a documented code");
    Require(query(nullptr, 0) == answer.code, "a null buffer tells whether there is an answer");
    if (!answer.isWritten) return answer;
    const std::size_t length = answer.text.size();
    for (const std::size_t size : {std::size_t{0}, length / 2, length})
        Require(ask(query, size).code == OAMERR_NOT_ENOUGH_MEMORY, "a short buffer is refused");
    const Answer tight = ask(query, length + 1);
    Require(tight.text == answer.text ||
                (tight.code == OAMERR_NOT_ENOUGH_MEMORY && length + 1 < kNumberSize),
            "a buffer that is just large enough is enough");
    return answer;
}

void areTheSame(const Answer& left, const Answer& right) {
    Require(left.code == right.code && left.isWritten == right.isWritten &&
                strcasecmp(left.text.c_str(), right.text.c_str()) == 0,
            "letter case does not matter");
}

std::string inCapitals(std::string text) {
    for (char& letter : text) {
        if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
    }
    return text;
}

class Supervisor {
  public:
    Supervisor() {
        (void)oam::fuzz::RunningService::Get();
        Require(_oamOpenObject(oam::fuzz::kClient, "Supervisor", &handle_, OAM_OPEN_READ) ==
                    OAM_SUCCESS,
                "the Supervisor opens");
    }
    ~Supervisor() { (void)_oamCloseObject(handle_); }
    Supervisor(const Supervisor&) = delete;
    Supervisor& operator=(const Supervisor&) = delete;

    Answer Keyword(const std::string& name) const {
        return askInAllSizes(
            [&](char* buffer, unsigned size) {
                return _oamGetKeyword(handle_, name.c_str(), buffer, size);
            },
            kPlenty);
    }
    Answer Qualifier(const std::string& name, const std::string& qualifier) const {
        return askInAllSizes(
            [&](char* buffer, unsigned size) {
                return _oamGetQualifier(handle_, name.c_str(), qualifier.c_str(), buffer, size);
            },
            // An answer may repeat the name.
            kPlenty + name.size());
    }

  private:
    static constexpr std::size_t kPlenty = 512;

    unsigned long handle_ = 0;
};

struct Array {
    const char* name;
    bool hasMembers;
};

constexpr Array kArrays[] = {{"BoardPlugins", false},
                             {"Boards", false},
                             {"DetectedBoards", true},
                             {"ExtendedManagementComponents", false},
                             {"Products", false}};

// The i of "[i]" at the text's start, which is taken off it.
std::optional<unsigned long> takeIndex(std::string_view* text) {
    const std::size_t end = text->find(']');
    if (!text->starts_with('[') || end == std::string_view::npos || end == 1) return {};
    constexpr unsigned long kFarAway = 1000000;
    unsigned long index = 0;
    for (const char digit : text->substr(1, end - 1)) {
        if (digit < '0' || digit > '9') return {};
        index = std::min(index * 10 + static_cast<unsigned long>(digit - '0'), kFarAway);
    }
    text->remove_prefix(end + 1);
    return index;
}

void hasWhatItCounts(const Supervisor& supervisor, const std::string& name, const Answer& answer) {
    for (const Array& array : kArrays) {
        const std::string element = std::string(array.name) + '[';
        if (strncasecmp(name.c_str(), element.c_str(), element.size()) != 0) continue;
        const Answer count = supervisor.Keyword(std::string(array.name) + ".Count");
        Require(count.isWritten && count.text != "0", "an array counts its elements");
        std::string_view rest = std::string_view(name).substr(element.size() - 1);
        const auto index = takeIndex(&rest);
        const bool isElement = index && *index < std::stoul(count.text) &&
                               (array.hasMembers ? rest.starts_with('.') : rest.empty());
        Require((answer.code == OAM_SUCCESS) == isElement, "an array has what it counts");
        // An unknown member of a detected board succeeds without one.
        Require(array.hasMembers || answer.isWritten == isElement, "an element has a text");
        return;
    }
    Require(answer.isWritten == (answer.code == OAM_SUCCESS), "an answer has a text");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Supervisor supervisor;
    const std::string_view input = oam::fuzz::AsText(data, size);
    const std::size_t end = std::min(input.find('\n'), input.size());
    // As the entry points see them: a text ends at its first zero byte.
    const std::string name = std::string(input.substr(0, end)).c_str();
    const std::string qualifier =
        std::string(input.substr(std::min(end + 1, input.size()))).c_str();

    const Answer keyword = supervisor.Keyword(name);
    areTheSame(keyword, supervisor.Keyword(inCapitals(name)));
    hasWhatItCounts(supervisor, name, keyword);
    areTheSame(supervisor.Qualifier(name, qualifier),
               supervisor.Qualifier(inCapitals(name), inCapitals(qualifier)));
    return 0;
}
