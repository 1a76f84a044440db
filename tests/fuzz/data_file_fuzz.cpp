// Data files: the service's reader against the operator tool's own one, and both against the
// service's writer.
//
// For any bytes the two readers agree whether they are a data file (or an export) and on every
// object, keyword and value, in order. In two places the tool is stricter on purpose, because the
// service could not write such a file again:
//   - a keyword that stands in the root belongs to an object with an empty name;
//   - a backslash in a name, or a directory in a directory, makes an object with a path for a name.
// And what the tool calls storable comes back from a file as it was written.
//
// Each input is read as a data file, as an export, and as three lines: object, keyword, value.
#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "data_file.h"
#include "fuzz_target.h"
#include "memory_file.h"
#include "storable.h"
#include "xmo_reader.h"
#include "xmo_writer.h"

namespace {

using oam::fuzz::Require;

struct Keyword {
    std::string object;
    std::string name;
    std::string value;
    bool operator==(const Keyword&) const = default;
};

struct Reading {
    std::vector<Keyword> keywords;
    bool isWhole = false;
};

MemoryFile& file() {
    static MemoryFile instance;
    return instance;
}

Reading readAsService(const char* root) {
    Reading reading;
    CXmlImport reader;
    Require(reader.Open(file().Path(), root) == 0, "the reader opens the file");
    CXmlImport::eTokenType kind;
    while ((kind = reader.GetNextKeyword()) == CXmlImport::kText)
        reading.keywords.push_back({reader.ObjectName(), reader.Keyword(), reader.Value()});
    Require(kind != CXmlImport::kReadError, "memory can be read");
    reading.isWhole = kind == CXmlImport::kEndOfFile;
    Require(reader.Close() == 0, "the reader closes the file");
    return reading;
}

std::vector<Keyword> keywordsOf(const oam::DataFile& data) {
    std::vector<Keyword> keywords;
    for (const oam::DataObject& object : data.objects) {
        for (const oam::DataEntry& entry : object.entries)
            keywords.push_back({object.name, entry.name, entry.value});
    }
    return keywords;
}

bool isPlainName(const std::string& object) {
    return !object.empty() && object.find('\\') == std::string::npos;
}

bool toolIsStricter(const Reading& service, const oam::DataMistake& mistake) {
    return mistake.text.starts_with("a backslash in the name") ||
           !std::all_of(service.keywords.begin(), service.keywords.end(),
                        [](const Keyword& keyword) { return isPlainName(keyword.object); });
}

Reading readAsBoth(std::string_view content, const char* root) {
    file().Write(content);
    Reading service = readAsService(root);
    const oam::DataFile tool = oam::ReadDataFile(content, root);
    const std::vector<Keyword> keywords = keywordsOf(tool);
    if (tool.mistake) {
        Require(!service.isWhole || toolIsStricter(service, *tool.mistake),
                "what the tool cannot read the service cannot read either");
        Require(keywords.size() <= service.keywords.size() &&
                    std::equal(keywords.begin(), keywords.end(), service.keywords.begin()),
                "both read the same up to the tool's mistake");
    } else {
        Require(service.isWhole, "what the tool can read the service can read");
        Require(keywords == service.keywords, "both read the same keywords");
    }
    return service;
}

bool isStorable(const Keyword& keyword) {
    return oam::WhyObjectNameIsLost(keyword.object).empty() &&
           oam::WhyKeywordNameIsLost(keyword.object, keyword.name).empty() &&
           oam::WhyValueIsLost(keyword.value).empty();
}

void write(const std::vector<Keyword>& keywords, const char* root) {
    CXmlExport writer;
    Require(writer.Open(file().Path(), root) == 0, "the writer opens the file");
    const std::string* object = nullptr;
    for (const Keyword& keyword : keywords) {
        if (object == nullptr || *object != keyword.object) {
            if (object != nullptr) Require(writer.EndDir(object->c_str()) == 0, "an object ends");
            Require(writer.BegDir(keyword.object.c_str()) == 0, "an object begins");
            object = &keyword.object;
        }
        Require(writer.SetNextKeyword(keyword.name.c_str(), keyword.value.c_str()) == 0,
                "a keyword is written");
    }
    Require(writer.Close() == 0, "the file is finished");
}

void comesBack(const std::vector<Keyword>& keywords, const char* root) {
    write(keywords, root);
    const Reading again = readAsBoth(file().Read(), root);
    Require(again.isWhole, "what was written can be read");
    Require(again.keywords == keywords, "what was written comes back unchanged");
}

void readAsFile(std::string_view content, const char* root) {
    const Reading reading = readAsBoth(content, root);
    if (reading.isWhole &&
        std::all_of(reading.keywords.begin(), reading.keywords.end(), isStorable))
        comesBack(reading.keywords, root);
}

void readAsLines(std::string_view content) {
    std::array<std::string, 3> lines;
    for (std::string& line : lines) {
        const size_t end = std::min(content.find('\n'), content.size());
        line = content.substr(0, end);
        content.remove_prefix(std::min(end + 1, content.size()));
    }
    const Keyword name{lines[0], "Name", lines[0]};
    const Keyword keyword{lines[0], lines[1], lines[2]};
    if (isStorable(name) && isStorable(keyword)) comesBack({name, keyword}, kObjectRoot);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view content = oam::fuzz::AsText(data, size);
    readAsFile(content, kObjectRoot);
    readAsFile(content, kExportRoot);
    readAsLines(content);
    return 0;
}
