#include "support/data_file.h"

#include <gtest/gtest.h>

namespace oam::test {

namespace {

constexpr const char* kDeclaration = "<?XML version=\"1.0\"?>\n";
const std::string kRoot = "OA&M Configuration ver. 1.0";

std::string directory(const std::string& object, const Entries& entries) {
    std::string text = "   <" + object + ">\n";
    for (const auto& [name, value] : entries) {
        text += "      <" + name + ">" + value + "</>\n";
    }
    return text + "   </" + object + ">\n";
}

std::string document(const std::string& root, const std::string& content) {
    return kDeclaration + ("<" + root + ">\n") + content + "</" + root + ">\n";
}

void addDescribed(Entries& entries, const std::string& keyword, const std::string& value,
                  const std::string& description, const std::string& type) {
    entries.emplace_back(keyword, value);
    entries.emplace_back(keyword + "?Description", description);
    entries.emplace_back(keyword + "?Type", type);
}

}  // namespace

std::string DataFile(const std::string& object, const Entries& entries) {
    return document(kRoot + " - Object", directory(object, entries));
}

std::string ExportFile(const std::vector<ObjectEntries>& objects) {
    std::string content;
    for (const ObjectEntries& object : objects) content += directory(object.name, object.entries);
    return document(kRoot, content);
}

Entries StandardEntries(const std::string& name) {
    Entries entries;
    addDescribed(entries, "Name", name, "name of managed object", "Object");
    return entries;
}

Entries StandardEntries(const std::string& name, const std::string& product) {
    Entries entries = StandardEntries(name);
    entries.emplace_back("Product", product);
    entries.emplace_back("Product?Type", "String");
    return entries;
}

Entries SupervisorEntries() {
    Entries entries;
    addDescribed(entries, "AutoStartEnabled", "No", "enables automatic start of boards", "String");
    addDescribed(entries, "AutoStopEnabled", "No", "enables automatic stop of boards", "String");
    addDescribed(entries, "Name", "Supervisor", "name of managed object", "Object");
    addDescribed(entries, "OammonLog", "No", "enables logging of board trace", "String");
    addDescribed(entries, "SynchronizeEnabled", "No", "enables synchronize start/stop operation",
                 "String");
    addDescribed(entries, "Version.Major", "1", "version major number", "Integer");
    addDescribed(entries, "Version.Minor", "0", "version minor number", "Integer");
    return entries;
}

Entries With(Entries entries, const std::string& name, const std::string& value) {
    for (auto& entry : entries) {
        if (entry.first != name) continue;
        entry.second = value;
        return entries;
    }
    ADD_FAILURE() << "no entry " << name;
    return entries;
}

Entries Without(Entries entries, const std::string& name) {
    EXPECT_EQ(std::erase_if(entries, [&](const auto& entry) { return entry.first == name; }), 1u);
    return entries;
}

}  // namespace oam::test
