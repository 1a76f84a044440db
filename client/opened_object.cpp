#include "opened_object.h"

#include "failure.h"
#include "number.h"

namespace oam {
namespace {

constexpr unsigned long kClient = 1;

std::string openAdvice(unsigned code) {
    switch (code) {
        case OAMERR_NOT_FOUND:
            return "`oam objects` lists the objects";
        case OAMERR_ACCESS_DENIED:
            return "another user of the service has it open; try again";
        case OAMERR_FILE_READ_ERROR:
            return "`oam check` tells what is wrong with its data file";
        default:
            return {};
    }
}

}  // namespace

OpenedObject::OpenedObject(const std::string& name, unsigned mode) : name_(name) {
    const unsigned code = _oamOpenObject(kClient, name.c_str(), &handle_, mode);
    if (code) throw Failure(code, "cannot open the object " + Quoted(name), openAdvice(code));
    open_ = true;
}

OpenedObject::~OpenedObject() {
    if (open_) (void)_oamCloseObject(handle_);
}

Answer OpenedObject::Keyword(const std::string& keyword) const {
    return AskText([&](char* buffer, unsigned size) {
        return _oamGetKeyword(handle_, keyword.c_str(), buffer, size);
    });
}

Answer OpenedObject::Qualifier(const std::string& keyword, const std::string& qualifier) const {
    return AskText([&](char* buffer, unsigned size) {
        return _oamGetQualifier(handle_, keyword.c_str(), qualifier.c_str(), buffer, size);
    });
}

unsigned OpenedObject::Count(const std::string& list) const {
    return BoundedCount(Keyword(list + ".Count"));
}

std::vector<std::string> OpenedObject::Entries() const {
    return AskNames([&](int index, char* buffer, unsigned size) {
        return _oamDbEnumKeywords(handle_, index, buffer, size);
    });
}

unsigned OpenedObject::Close() {
    open_ = false;
    return _oamCloseObject(handle_);
}

unsigned OpenedObject::CloseWithoutAlert() {
    open_ = false;
    return _oamCloseObject_WOAN(handle_);
}

std::string Element(const std::string& list, unsigned index) {
    return list + '[' + std::to_string(index) + ']';
}

unsigned BoundedCount(const Answer& answer) {
    const auto count = answer.IsGiven() ? ParseNumber(answer.text) : std::nullopt;
    return count && *count <= kMostElements ? *count : 0;
}

}  // namespace oam
