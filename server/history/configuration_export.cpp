#include "history/configuration_export.h"

#include <algorithm>

#include "data_file.h"

namespace oam::server {
namespace {

std::string tag(std::string_view name) { return '<' + std::string(name) + '>'; }

void addObject(const ObjectVersion& version, std::string* text) {
    Keywords keywords = KeywordsOf(version.bytes);
    // What a hand has left out or put otherwise; a start brings the object up under its own name.
    keywords["Name"] = version.object;
    *text += "   " + tag(version.object) + '\n';
    for (const auto& [name, value] : keywords) *text += "      " + tag(name) + value + "</>\n";
    *text += "   " + tag('/' + version.object) + '\n';
}

}  // namespace

std::string ExportText(const std::vector<ObjectVersion>& state) {
    std::vector<const ObjectVersion*> objects;
    for (const ObjectVersion& version : state) objects.push_back(&version);
    std::sort(objects.begin(), objects.end(),
              [](const ObjectVersion* left, const ObjectVersion* right) {
                  return NameLess()(left->object, right->object);
              });
    std::string text = "<?XML version=\"1.0\"?>\n" + tag(kExportRoot) + '\n';
    for (const ObjectVersion* version : objects) addObject(*version, &text);
    return text + tag('/' + std::string(kExportRoot)) + '\n';
}

}  // namespace oam::server
