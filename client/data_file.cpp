#include "data_file.h"

#include <algorithm>
#include <utility>

#include "failure.h"
#include "object_kind.h"

namespace oam {
namespace {

class Reader {
  public:
    Reader(std::string_view content, std::string_view root) : tokens_(content), root_(root) {}

    DataFile Read() {
        while (!file_.mistake && !ended_) Take(tokens_.Next());
        return std::move(file_);
    }

  private:
    struct Element {
        std::string name;
        Position at;
        bool isBare = true;  // nothing has come since its begin tag
    };

    void Take(const Token& token) {
        switch (token.kind) {
            case TokenKind::kInstruction:
            case TokenKind::kComment:
                if (!open_.empty()) open_.back().isBare = false;
                break;
            case TokenKind::kBegin:
                Begin(token);
                break;
            case TokenKind::kEnd:
                End(token);
                break;
            case TokenKind::kText:
                Text(token);
                break;
            case TokenKind::kError:
                Mistake(token.at, token.text);
                break;
            case TokenKind::kEndOfFile:
                EndOfFile(token.at);
                break;
        }
    }

    void Begin(const Token& tag) {
        if (open_.empty() && tag.text != root_)
            return Mistake(tag.at, "the root is " + Quoted(tag.text) + " instead of " +
                                       Quoted(std::string(root_)));
        if (!open_.empty()) {
            if (tag.text.find('\\') != std::string::npos)
                return Mistake(tag.at, "a backslash in the name " + Quoted(tag.text));
            if (pathSize_ + tag.text.size() + 1 >= kDataPathSize)
                return Mistake(tag.at, "the names here are longer than 253 bytes together");
            pathSize_ += tag.text.size() + 1;
            open_.back().isBare = false;
            isNewObject_ = isNewObject_ || open_.size() == 1;
        }
        open_.push_back({tag.text, tag.at});
    }

    void End(const Token& tag) {
        if (open_.empty()) return Mistake(tag.at, "an end tag without a begin tag");
        const Element element = open_.back();
        // The root alone must be closed by its name.
        if (tag.text != element.name && (open_.size() == 1 || !tag.text.empty()))
            return Mistake(tag.at, Quoted("</" + tag.text + ">") + " does not close " +
                                       Quoted("<" + element.name + ">") + " of line " +
                                       std::to_string(element.at.line));
        open_.pop_back();
        if (open_.empty()) return;
        pathSize_ -= element.name.size() + 1;
        if (element.isBare) Keyword(element, {});
    }

    void Text(const Token& text) {
        if (open_.size() < 3) return Mistake(text.at, "a text outside of any keyword");
        Element element = open_.back();
        open_.back().isBare = false;
        open_.pop_back();
        Keyword(element, text.text);
        element.isBare = false;
        open_.push_back(element);
        sawValue_ = true;
    }

    // The element is taken off the open ones: what remains is the root and its object.
    void Keyword(const Element& element, const std::string& value) {
        if (open_.size() < 2)
            return Mistake(element.at, "the object " + Quoted(element.name) + " has no keyword");
        if (open_.size() > 2)
            return Mistake(element.at, "the keyword " + Quoted(element.name) +
                                           " stands in a directory inside of its object");
        if (std::exchange(isNewObject_, false))
            file_.objects.push_back({open_.back().name, open_.back().at, {}});
        file_.objects.back().entries.push_back({element.name, value, element.at});
    }

    void EndOfFile(Position at) {
        ended_ = true;
        if (!open_.empty())
            return Mistake(at, "the file ends before " + Quoted("</" + open_.back().name + ">") +
                                   ": it was cut short");
        if (!sawValue_) Mistake(at, "no keyword in the file has a value");
    }

    void Mistake(Position at, const std::string& text) {
        if (!file_.mistake) file_.mistake = DataMistake{at, text};
    }

    TokenReader tokens_;
    std::string_view root_;
    std::vector<Element> open_;
    size_t pathSize_ = 0;
    bool isNewObject_ = false;  // a directory was begun and no keyword of it read yet
    bool sawValue_ = false;
    bool ended_ = false;
    DataFile file_;
};

}  // namespace

const DataEntry* DataObject::Find(const std::string& keyword) const {
    const auto found = std::find_if(entries.rbegin(), entries.rend(), [&](const DataEntry& entry) {
        return SameName(entry.name, keyword);
    });
    return found == entries.rend() ? nullptr : &*found;
}

DataFile ReadDataFile(std::string_view content, std::string_view root) {
    return Reader(content, root).Read();
}

std::optional<DataMistake> WhyNoObject(const DataFile& file) {
    if (file.objects.size() > 1)
        return DataMistake{file.objects[1].at, "a second object in one data file"};
    return file.mistake;
}

}  // namespace oam
