// Reading an object: its keywords, and what describes each of them.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "object_kind.h"
#include "text_answer.h"

namespace oam {

// One keyword: its value, or the code that the object answered instead.
struct KeywordFacts {
    std::string name;
    Answer value;
    // Those stored with it, and those that every keyword answers. Only of DescribeObject.
    std::map<std::string, std::string, NameLess> qualifiers;
};

std::vector<std::string> ObjectNames();

// No keywords means all of them: stored and computed ones, sorted, each once. An object that cannot
// be opened is a Failure.
std::vector<KeywordFacts> ReadObject(const std::string& name,
                                     const std::vector<std::string>& keywords);
std::vector<KeywordFacts> DescribeObject(const std::string& name,
                                         const std::vector<std::string>& keywords);
// One qualifier of each keyword in the place of its value.
std::vector<KeywordFacts> ReadQualifier(const std::string& name,
                                        const std::vector<std::string>& keywords,
                                        const std::string& qualifier);

}  // namespace oam
