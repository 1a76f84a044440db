#include "object_reading.h"

#include <set>

#include "keyword_walk.h"
#include "opened_object.h"

namespace oam {
namespace {

using Qualifiers = std::map<std::string, std::string, NameLess>;

Qualifiers qualifiersOf(const OpenedObject& object, const std::vector<std::string>& entries,
                        const std::string& keyword) {
    std::set<std::string, NameLess> names{"Type", "Description", "ReadOnly"};
    for (const std::string& entry : entries) {
        const size_t mark = entry.find('?');
        if (mark != std::string::npos && SameName(entry.substr(0, mark), keyword))
            names.insert(entry.substr(mark + 1));
    }
    const unsigned choices = BoundedCount(object.Qualifier(keyword, "Choices.Count"));
    for (unsigned i = 0; i < choices; ++i) names.insert(Element("Choices", i));
    Qualifiers qualifiers;
    for (const std::string& name : names) {
        const Answer answer = object.Qualifier(keyword, name);
        if (answer.IsGiven()) qualifiers[name] = answer.text;
    }
    return qualifiers;
}

// `facts(object, keyword)` of each.
template <class Facts>
std::vector<KeywordFacts> read(const OpenedObject& object, const std::vector<std::string>& keywords,
                               const Facts& facts) {
    std::vector<KeywordFacts> all;
    for (const std::string& keyword : keywords.empty() ? AllKeywords(object) : keywords)
        all.push_back(facts(keyword));
    return all;
}

}  // namespace

std::vector<std::string> ObjectNames() { return AskNames(_oamDbEnumObjects); }

std::vector<KeywordFacts> ReadObject(const std::string& name,
                                     const std::vector<std::string>& keywords) {
    const OpenedObject object(name, OAM_OPEN_READ);
    return read(object, keywords, [&](const std::string& keyword) {
        return KeywordFacts{keyword, object.Keyword(keyword), {}};
    });
}

std::vector<KeywordFacts> DescribeObject(const std::string& name,
                                         const std::vector<std::string>& keywords) {
    const OpenedObject object(name, OAM_OPEN_READ);
    const auto entries = object.Entries();
    return read(object, keywords, [&](const std::string& keyword) {
        return KeywordFacts{keyword, object.Keyword(keyword),
                            qualifiersOf(object, entries, keyword)};
    });
}

std::vector<KeywordFacts> ReadQualifier(const std::string& name,
                                        const std::vector<std::string>& keywords,
                                        const std::string& qualifier) {
    const OpenedObject object(name, OAM_OPEN_READ);
    return read(object, keywords, [&](const std::string& keyword) {
        return KeywordFacts{keyword, object.Qualifier(keyword, qualifier), {}};
    });
}

}  // namespace oam
