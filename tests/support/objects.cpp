#include "support/objects.h"

#include <gtest/gtest.h>

#include <array>
#include <ios>

namespace oam::test {

namespace {

template <class Ask>
Answer ask(Ask call) {
    std::array<char, 4096> buffer{};
    const unsigned code = call(buffer.data(), static_cast<unsigned>(buffer.size()));
    return {code, code == OAM_SUCCESS ? buffer.data() : ""};
}

template <class Ask>
std::vector<std::string> enumerate(Ask call) {
    std::vector<std::string> names;
    for (int index = 0;; ++index) {
        const Answer answer =
            ask([&](char* buffer, unsigned size) { return call(index, buffer, size); });
        if (answer.code == OAMERR_NOT_FOUND) return names;
        EXPECT_EQ(answer.code, OAM_SUCCESS) << "at index " << index;
        if (answer.code != OAM_SUCCESS) return names;
        names.push_back(answer.text);
    }
}

template <class Ask>
Answer askOpened(const std::string& object, Ask call) {
    unsigned long handle = 0;
    const oam_result opened = _oamOpenObject(kClient, object.c_str(), &handle, kRead);
    if (opened != OAM_SUCCESS) return Fails(opened);
    const Answer answer = call(handle);
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS) << "closing " << object;
    return answer;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Answer& answer) {
    if (answer.code == OAM_SUCCESS) return out << "\"" << answer.text << "\"";
    const char* name = _oamGetText(answer.code);
    if (name != nullptr) return out << name;
    return out << "0x" << std::hex << answer.code << std::dec;
}

unsigned long Open(const std::string& object, unsigned mode, unsigned long client) {
    unsigned long handle = 0;
    EXPECT_EQ(_oamOpenObject(client, object.c_str(), &handle, mode), OAM_SUCCESS)
        << "opening " << object;
    return handle;
}

unsigned long DbOpen(const std::string& object, unsigned mode) {
    unsigned long handle = 0;
    EXPECT_EQ(_oamDbOpenObject(object.c_str(), &handle, mode), OAM_SUCCESS) << "opening " << object;
    return handle;
}

Answer GetKeyword(unsigned long handle, const std::string& keyword) {
    return ask([&](char* buffer, unsigned size) {
        return _oamGetKeyword(handle, keyword.c_str(), buffer, size);
    });
}

Answer GetQualifier(unsigned long handle, const std::string& keyword,
                    const std::string& qualifier) {
    return ask([&](char* buffer, unsigned size) {
        return _oamGetQualifier(handle, keyword.c_str(), qualifier.c_str(), buffer, size);
    });
}

Answer DbGetKeyword(unsigned long handle, const std::string& keyword) {
    return ask([&](char* buffer, unsigned size) {
        return _oamDbGetKeyword(handle, keyword.c_str(), buffer, size);
    });
}

Answer DbGetQualifier(unsigned long handle, const std::string& keyword,
                      const std::string& qualifier) {
    return ask([&](char* buffer, unsigned size) {
        return _oamDbGetQualifier(handle, keyword.c_str(), qualifier.c_str(), buffer, size);
    });
}

Answer KeywordOf(const std::string& object, const std::string& keyword) {
    return askOpened(object, [&](unsigned long handle) { return GetKeyword(handle, keyword); });
}

Answer QualifierOf(const std::string& object, const std::string& keyword,
                   const std::string& qualifier) {
    return askOpened(
        object, [&](unsigned long handle) { return GetQualifier(handle, keyword, qualifier); });
}

Answer StoredKeywordOf(const std::string& object, const std::string& keyword) {
    const unsigned long handle = DbOpen(object);
    if (handle == 0) return Fails(OAMERR_NOT_FOUND);
    const Answer answer = DbGetKeyword(handle, keyword);
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS) << "closing " << object;
    return answer;
}

oam_result Change(const std::string& object, const std::string& keyword, const std::string& value) {
    unsigned long handle = 0;
    if (auto failed = _oamOpenObject(kClient, object.c_str(), &handle, kWrite)) return failed;
    const oam_result set = _oamSetKeyword(handle, keyword.c_str(), value.c_str());
    const oam_result closed = _oamCloseObject(handle);
    return set != OAM_SUCCESS ? set : closed;
}

oam_result DbChange(const std::string& object, const std::string& keyword,
                    const std::string& value) {
    unsigned long handle = 0;
    if (auto failed = _oamDbOpenObject(object.c_str(), &handle, kProvider)) return failed;
    const oam_result set = _oamDbSetKeyword(handle, keyword.c_str(), value.c_str());
    const oam_result closed = _oamDbCloseObject(handle);
    return set != OAM_SUCCESS ? set : closed;
}

std::vector<std::string> Objects() {
    return enumerate([](int index, char* buffer, unsigned size) {
        return _oamDbEnumObjects(index, buffer, size);
    });
}

std::vector<std::string> EntryNames(unsigned long handle) {
    return enumerate([handle](int index, char* buffer, unsigned size) {
        return _oamDbEnumKeywords(handle, index, buffer, size);
    });
}

std::string CreateBoard(const std::string& product) {
    std::array<char, 128> name{};
    EXPECT_EQ(_oamCreateBoard(product.c_str(), name.data(), name.size()), OAM_SUCCESS)
        << "creating a board of " << product;
    return name.data();
}

}  // namespace oam::test
