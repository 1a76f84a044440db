// code_pairs RECORD [EXPECTED]: prints each function with each code that it answered in a test run,
// one pair a line. With a list of pairs it tells what the run did not produce instead (exit status
// 1), and what the functions answered of the service's codes without being in the list.
#include <algorithm>
#include <cstring>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <memory>
#include <set>
#include <sstream>
#include <string>

#include "code_record.h"
#include "oam/codes.h"

namespace oam::test {
namespace {

// In the list, of a function that hands on whatever a plug-in answers.
constexpr const char* kAny = " any";

// What is above the service's own codes is the answer of a plug-in or a component.
std::string nameOf(unsigned code) {
    if (code > OAMERR_CANT_CREATE_THREAD) return "(a plug-in's)";
    switch (code) {
        case OAM_SUCCESS:
            return "OAM_SUCCESS";
#define OAM_CODE(name, value) \
    case value:               \
        return #name;
#include "oam/codes.def"
#undef OAM_CODE
        default:
            return "(a plug-in's)";
    }
}

std::set<std::string> readRecord(const char* path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(file), {});
    auto record = std::make_unique<CodeRecord>();
    std::set<std::string> pairs;
    if (bytes.size() != sizeof(CodeRecord)) return pairs;
    std::memcpy(static_cast<void*>(record.get()), bytes.data(), bytes.size());
    for (std::size_t i = 0; i < kRecordedCount; ++i)
        for (const auto& place : record->answered[i])
            if (place != 0) pairs.insert(kRecordedFunctions[i] + (" " + nameOf(place - 1)));
    return pairs;
}

std::set<std::string> readList(const char* path) {
    std::set<std::string> pairs;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        std::string function, code;
        if (words >> function && function[0] != '#')
            while (words >> code) pairs.insert(function + " " + code);
    }
    return pairs;
}

std::set<std::string> without(const std::set<std::string>& all, const std::set<std::string>& some) {
    std::set<std::string> rest;
    std::set_difference(all.begin(), all.end(), some.begin(), some.end(),
                        std::inserter(rest, rest.end()));
    return rest;
}

int compare(const std::set<std::string>& produced, const std::set<std::string>& expected) {
    const auto isPair = [](const std::string& line) { return !line.ends_with(kAny); };
    const auto pairs = std::count_if(expected.begin(), expected.end(), isPair);
    auto missing = without(expected, produced);
    std::erase_if(missing, std::not_fn(isPair));
    for (const auto& pair : missing) std::cout << "no test produced  " << pair << "\n";
    auto unlisted = without(produced, expected);
    std::erase_if(unlisted, [&](const std::string& pair) {
        return pair.ends_with(")") || expected.contains(pair.substr(0, pair.find(' ')) + kAny);
    });
    for (const auto& pair : unlisted) std::cout << "not in the list   " << pair << "\n";
    std::cout << "pairs of function and code: " << pairs - std::ssize(missing) << " of " << pairs
              << " produced, " << unlisted.size() << " more\n";
    return pairs == 0 || !missing.empty() || !unlisted.empty();
}

}  // namespace
}  // namespace oam::test

int main(int count, char** arguments) {
    using namespace oam::test;
    if (count < 2 || count > 3) {
        std::cerr << "usage: code_pairs RECORD [EXPECTED]\n";
        return 2;
    }
    const auto produced = readRecord(arguments[1]);
    if (produced.empty()) {
        std::cerr << arguments[1] << ": holds no record of codes\n";
        return 2;
    }
    if (count == 3) return compare(produced, readList(arguments[2]));
    for (const auto& pair : produced) std::cout << pair << "\n";
}
