#include "reader_process.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>

namespace oam::test {

ReaderProcess::ReaderProcess() : process_(SHADOW_READER, {}) {}

ReaderProcess::ReaderProcess(bool attached) : ReaderProcess() {
    if (attached) {
        EXPECT_EQ(Code({"init"}), unsigned{OAM_SUCCESS});
    }
}

std::vector<std::string> ReaderProcess::Ask(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words) line += (line.empty() ? "" : "\t") + word;
    process_.Say(line);
    std::vector<std::string> answers;
    std::istringstream in(process_.Hear());
    for (std::string word; std::getline(in, word, '\t');) answers.push_back(word);
    if (answers.empty()) answers.push_back("no answer");
    return answers;
}

unsigned ReaderProcess::Code(const std::vector<std::string>& words) {
    return static_cast<unsigned>(std::strtoul(Ask(words).at(0).c_str(), nullptr, 16));
}

Answer ReaderProcess::Value(const std::vector<std::string>& words) {
    const std::vector<std::string> answers = Ask(words);
    Answer value{static_cast<unsigned>(std::strtoul(answers.at(0).c_str(), nullptr, 16)), {}};
    for (size_t i = 1; i < answers.size(); ++i) value.text += (i == 1 ? "" : "|") + answers[i];
    return value;
}

std::vector<std::string> ReaderProcess::Boards() {
    std::vector<std::string> names;
    for (int index = 0;; ++index) {
        const Answer name = Value({"enum", std::to_string(index), "200"});
        if (name.code == OAMERR_NOT_FOUND) return names;
        EXPECT_EQ(name.code, unsigned{OAM_SUCCESS});
        if (name.code != OAM_SUCCESS) return names;
        names.push_back(name.text);
    }
}

}  // namespace oam::test
