// Asking the service for a text: the caller's buffer grows until the text fits.
//
// "Does not fit" and "no memory" are one code, so the growth has an end; past it the code is the
// answer. The buffer is emptied before each question: some keywords answer success and write
// nothing.
#pragma once

#include <string>
#include <vector>

#include "oam/entry.h"

namespace oam {

struct Answer {
    unsigned code;
    std::string text;

    bool IsGiven() const { return code == OAM_SUCCESS; }
};

// `ask(buffer, size)` answers a code of the service.
template <class Ask>
Answer AskText(Ask ask) {
    constexpr unsigned kLargest = 1u << 20;
    for (unsigned size = 1u << 8;; size *= 8) {
        std::vector<char> buffer(size);
        const unsigned code = ask(buffer.data(), size);
        if (code == OAM_SUCCESS) return {code, buffer.data()};
        if (code != OAMERR_NOT_ENOUGH_MEMORY || size >= kLargest) return {code, {}};
    }
}

// `ask(index, buffer, size)` from index 0 until it answers anything but success.
template <class Ask>
std::vector<std::string> AskNames(Ask ask) {
    std::vector<std::string> names;
    for (int index = 0;; ++index) {
        Answer name =
            AskText([&](char* buffer, unsigned size) { return ask(index, buffer, size); });
        if (!name.IsGiven()) return names;
        names.push_back(std::move(name.text));
    }
}

}  // namespace oam
