// Asks the board shadow what its input says, one question a line, one answer a line.
//
// A question is a word and its arguments, separated by tabs; an answer is the result code in
// hexadecimal, then what the call gave, separated by tabs:
//
//   init | exit | attached                    attached: 1 or 0 instead of a code
//   enum index size | number number size | driver name id size       a board's name
//   number-of name | ids name size size | vx | alaw name
//   spin                                      asks for ever, after one line "spinning"
//   pairs name count                          how often the two driver texts did not match
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "oam/shadow.h"

namespace {

using Words = std::vector<std::string>;

unsigned numberOf(const std::string& word) {
    return static_cast<unsigned>(std::strtoul(word.c_str(), nullptr, 10));
}

std::string answer(oam_result code, const Words& values = {}) {
    char number[16];
    std::snprintf(number, sizeof number, "%x", static_cast<unsigned>(code));
    std::string line = number;
    if (code != OAM_SUCCESS) return line;
    for (const std::string& value : values) line += "\t" + value;
    return line;
}

// `ask` takes a buffer and its size.
template <class Ask>
std::string text(unsigned size, Ask ask) {
    std::vector<char> buffer(size + 1);
    const oam_result code = ask(buffer.data(), size);
    return answer(code, {buffer.data()});
}

std::string pairs(const std::string& name, unsigned count) {
    unsigned mixed = 0;
    unsigned failed = 0;
    for (unsigned i = 0; i < count; ++i) {
        char driver[130] = "";
        char id[66] = "";
        if (oamShadowBoardGetDriverIDs(0, name.c_str(), driver, sizeof driver, id, sizeof id) !=
            OAM_SUCCESS) {
            ++failed;
        } else if (std::string(driver) != id) {
            ++mixed;
        }
    }
    return std::to_string(mixed) + "\t" + std::to_string(failed);
}

[[noreturn]] void spin() {
    std::cout << "spinning" << std::endl;
    for (;;) {
        char name[129];
        bool flag = false;
        (void)oamShadowBoardEnum(0, 0, name, sizeof name);
        (void)oamShadowBoardGetIsUsingVxPlugin(0, &flag);
    }
}

std::string reply(const Words& words) {
    const std::string& question = words.at(0);
    if (question == "init") return answer(oamShadowInit());
    if (question == "exit") return answer(oamShadowExit());
    if (question == "attached") return oamShadowGetPtr() == nullptr ? "0" : "1";
    if (question == "enum") {
        return text(numberOf(words.at(2)), [&](char* buffer, unsigned size) {
            return oamShadowBoardEnum(0, std::atoi(words.at(1).c_str()), buffer, size);
        });
    }
    if (question == "number") {
        return text(numberOf(words.at(2)), [&](char* buffer, unsigned size) {
            return oamShadowBoardLookupByNumber(0, numberOf(words.at(1)), buffer, size);
        });
    }
    if (question == "driver") {
        return text(numberOf(words.at(3)), [&](char* buffer, unsigned size) {
            return oamShadowBoardLookupByDriverIDs(0, words.at(1).c_str(), words.at(2).c_str(),
                                                   buffer, size);
        });
    }
    if (question == "number-of") {
        unsigned number = 0;
        const oam_result code = oamShadowBoardGetNumber(0, words.at(1).c_str(), &number);
        return answer(code, {std::to_string(number)});
    }
    if (question == "ids") {
        std::vector<char> driver(numberOf(words.at(2)) + 1);
        std::vector<char> id(numberOf(words.at(3)) + 1);
        const oam_result code =
            oamShadowBoardGetDriverIDs(0, words.at(1).c_str(), driver.data(), numberOf(words.at(2)),
                                       id.data(), numberOf(words.at(3)));
        return answer(code, {driver.data(), id.data()});
    }
    if (question == "vx") {
        bool isUsing = false;
        const oam_result code = oamShadowBoardGetIsUsingVxPlugin(0, &isUsing);
        return answer(code, {isUsing ? "1" : "0"});
    }
    if (question == "alaw") {
        bool aLaw = false;
        const oam_result code = oamShadowBoardIsUsingALaw(0, words.at(1).c_str(), &aLaw);
        return answer(code, {aLaw ? "1" : "0"});
    }
    if (question == "pairs") return pairs(words.at(1), numberOf(words.at(2)));
    if (question == "spin") spin();
    return "?";
}

}  // namespace

int main() {
    for (std::string line; std::getline(std::cin, line);) {
        Words words;
        std::istringstream in(line);
        for (std::string word; std::getline(in, word, '\t');) words.push_back(word);
        std::cout << (words.empty() ? "?" : reply(words)) << std::endl;
    }
    return 0;
}
