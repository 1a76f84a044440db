// What the service asks of a plug-in as a whole: its products, and what it detects.
#include <algorithm>
#include <charconv>
#include <set>

#include "finding.h"
#include "opened_object.h"
#include "shown.h"
#include "stages.h"

namespace oam::check {
namespace {

constexpr int kHighestCount = 4096;
// A board's name is the product's with a number.
constexpr std::size_t kLongestProduct = 127 - 12;

std::string upper(std::string text) {
    for (char& letter : text)
        if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
    return text;
}

// A missing count is none; one that is no number has been told.
int countOf(const OpenedObject& object, const std::string& keyword) {
    const std::string text = object.Get(keyword).value_or("0");
    int count = 0;
    std::from_chars(text.data(), text.data() + text.size(), count);
    return std::clamp(count, 0, kHighestCount);
}

bool isPlainName(const std::string& name) {
    return !name.empty() && name.size() <= kLongestProduct && name.front() != ' ' &&
           name.back() != ' ' && name.find_first_of("<>\\") == std::string::npos;
}

std::set<std::string> checkProducts(const OpenedObject& own) {
    std::set<std::string> products;
    const int count = countOf(own, "Products.Count");
    if (count == 0) Tell(Rule::Products, "", "it serves no product");
    for (int i = 0; i < count; ++i) {
        const auto name = own.Get("Products[" + std::to_string(i) + "]");
        if (!name) continue;  // the service would not have started
        if (!isPlainName(*name)) Tell(Rule::Products, "", Quoted(*name) + " is no plain name");
        products.insert(upper(*name));
    }
    return products;
}

void checkDetected(const OpenedObject& own, const std::set<std::string>& products) {
    const int count = countOf(own, "DetectedBoards.Count");
    for (int i = 0; i < count; ++i) {
        const std::string element = "DetectedBoards[" + std::to_string(i) + "].";
        const auto name = own.Get(element + "Name");
        const auto product = own.Get(element + "Product");
        if (!name || !product) {
            Tell(Rule::Counts, Entry::GetKeyword,
                 "\"DetectedBoards.Count\" is " + std::to_string(count) + ", but " +
                     Quoted(element + (name ? "Product" : "Name")) + " cannot be read");
            return;
        }
        if (!isPlainName(*name))
            Tell(Rule::Detected, Entry::DetectBoards, Quoted(*name) + " is no plain name");
        if (!products.contains(upper(*product)))
            Tell(Rule::Detected, Entry::DetectBoards,
                 Quoted(*name) + " is a " + Quoted(*product) + ", none of the products");
    }
}

void checkAdding() {
    const auto failed = Service().AddDetectedBoard(nullptr);
    if (failed && failed != OAMERR_NOT_FOUND)
        Tell(Rule::Creates, Entry::CreateBoard,
             "the detected boards cannot be added: " + CodeText(failed));
}

}  // namespace

void CheckProducts(Bench& bench) {
    if (!bench.IsPlugin() || !bench.Start()) return;
    if (bench.Next()) {
        const OpenedObject own(bench.Asked().fileName, OAM_OPEN_READ);
        if (!own.Failure()) (void)checkProducts(own);
    }
    if (bench.Next()) {
        (void)Service().DetectBoards();
        const OpenedObject own(bench.Asked().fileName, OAM_OPEN_READ);
        if (!own.Failure()) checkDetected(own, checkProducts(own));
    }
    if (bench.Next()) {
        (void)Service().DetectBoards();
        checkAdding();
        (void)Service().DetectBoards();
    }
    bench.Stop();
}

}  // namespace oam::check
