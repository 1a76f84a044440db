#include "keyword_walk.h"

#include <set>

#include "object_kind.h"
#include "opened_object.h"

namespace oam {
namespace {

// An object's answers come from plug-ins: a structure may not go on for ever.
constexpr int kDeepest = 8;

class Walk {
  public:
    explicit Walk(const OpenedObject& object) : object_(object) {}

    std::set<std::string, NameLess> Run() {
        for (const std::string& entry : object_.Entries())
            if (entry.find('?') == std::string::npos) names_.insert(entry);
        Members("", 0);
        return std::move(names_);
    }

  private:
    void Members(const std::string& name, int depth) {
        const unsigned count = BoundedCount(object_.Qualifier(name, "Keywords.Count"));
        for (unsigned i = 0; i < count; ++i) {
            const Answer member = object_.Qualifier(name, Element("Keywords", i));
            if (member.IsGiven() && !member.text.empty()) Visit(member.text, depth + 1);
        }
    }

    void Visit(const std::string& name, int depth) {
        if (depth > kDeepest || ++visits_ > kMostElements) return;
        const std::string type = object_.Qualifier(name, "Type").text;
        if (SameName(type, "Struct")) return Members(name, depth);
        if (!SameName(type, "Array")) {
            names_.insert(name);
            return;
        }
        names_.insert(name + ".Count");
        const unsigned count = object_.Count(name);
        for (unsigned i = 0; i < count; ++i) Visit(Element(name, i), depth + 1);
    }

    const OpenedObject& object_;
    std::set<std::string, NameLess> names_;
    unsigned visits_ = 0;
};

}  // namespace

std::vector<std::string> AllKeywords(const OpenedObject& object) {
    const auto names = Walk(object).Run();
    return {names.begin(), names.end()};
}

}  // namespace oam
