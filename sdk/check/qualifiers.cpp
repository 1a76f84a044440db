#include "qualifiers.h"

#include <strings.h>

#include <algorithm>
#include <charconv>
#include <iterator>

#include "finding.h"
#include "shown.h"

namespace oam::check {
namespace {

constexpr int kMostChoices = 256;

std::optional<long long> parsed(std::string_view text, int base) {
    long long number = 0;
    if (text.starts_with('+')) text.remove_prefix(1);
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number, base);
    if (result.ec != std::errc() || result.ptr != end) return {};
    return number;
}

class Reader {
  public:
    Reader(const OpenedObject& object, const std::string& keyword)
        : object_(object), keyword_(keyword) {}

    std::optional<std::string> Text(const std::string& qualifier) const {
        return object_.GetQualifier(keyword_, qualifier);
    }

    std::optional<long long> Number(const std::string& qualifier, int base) const {
        const auto text = Text(qualifier);
        if (!text) return {};
        const auto number = parsed(*text, base);
        if (!number) Complain(Quoted(qualifier) + " is " + Quoted(*text) + ", no number");
        return number;
    }

    bool IsYes(const std::string& qualifier) const {
        const auto text = Text(qualifier);
        if (!text || EqualNoCase(*text, "No")) return false;
        if (!EqualNoCase(*text, "Yes"))
            Complain(Quoted(qualifier) + " is " + Quoted(*text) + ", neither Yes nor No");
        return EqualNoCase(*text, "Yes");
    }

    std::vector<std::string> Choices() const {
        std::vector<std::string> choices;
        const auto count = Number("Choices.Count", 10).value_or(0);
        for (long long i = 0; i < std::clamp(count, 0LL, static_cast<long long>(kMostChoices));
             ++i) {
            const std::string name = "Choices[" + std::to_string(i) + "]";
            const auto choice = Text(name);
            if (!choice) {
                Complain("\"Choices.Count\" is " + std::to_string(count) + ", but " + Quoted(name) +
                         " cannot be read");
                break;
            }
            choices.push_back(*choice);
        }
        return choices;
    }

    void Complain(const std::string& what) const {
        Tell(Rule::Qualifiers, Entry::GetQualifier, Quoted(keyword_) + ": " + what);
    }

  private:
    const OpenedObject& object_;
    const std::string& keyword_;
};

}  // namespace

Qualifiers Qualifiers::Read(const OpenedObject& object, const std::string& keyword) {
    const Reader reader(object, keyword);
    Qualifiers read;
    read.isReadOnly = reader.IsYes("ReadOnly");
    read.isNumber = EqualNoCase(reader.Text("Type").value_or("String"), "Integer");
    const auto base = reader.Number("Base", 10).value_or(10);
    if (base < 2 || base > 36)
        reader.Complain("\"Base\" is " + std::to_string(base));
    else
        read.base = static_cast<int>(base);
    if (read.isNumber) {
        read.min = reader.Number("Min", read.base);
        read.max = reader.Number("Max", read.base);
    }
    if (read.min && read.max && *read.min > *read.max) reader.Complain("\"Min\" is above \"Max\"");
    read.choices = reader.Choices();
    if (const auto value = object.Get(keyword); value && !read.Allow(*value))
        reader.Complain("its value " + Quoted(*value) + " does not obey them");
    return read;
}

bool Qualifiers::Allow(const std::string& value) const {
    if (!choices.empty() && std::none_of(choices.begin(), choices.end(), [&](const auto& choice) {
            return EqualNoCase(choice, value);
        }))
        return false;
    if (!isNumber) return true;
    const auto number = NumberOf(value);
    return number && (!min || *number >= *min) && (!max || *number <= *max);
}

std::optional<long long> Qualifiers::NumberOf(const std::string& text) const {
    return parsed(text, base);
}

std::string Qualifiers::Written(long long number) const {
    char text[80];
    const auto end = std::to_chars(std::begin(text), std::end(text), number, base).ptr;
    std::string written(text, end);
    for (char& letter : written)
        if (letter >= 'a') letter = static_cast<char>(letter - 'a' + 'A');
    return written;
}

bool EqualNoCase(const std::string& left, const std::string& right) {
    return strcasecmp(left.c_str(), right.c_str()) == 0;
}

}  // namespace oam::check
