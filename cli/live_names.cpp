#include "live_names.h"

#include <algorithm>
#include <set>

#include "config_scan.h"
#include "object_kind.h"
#include "remote/remote_service.h"
#include "service.h"
#include "wire/local_socket.h"

namespace oam {
namespace {

using Names = std::vector<std::string>;

template <class Ask>
Names askFor(Ask ask) try {
    return ask();
} catch (const std::exception&) {
    return {};
}

}  // namespace

LiveNames::LiveNames(const Installation& place) : place_(place) {
    try {
        if (const auto daemon = wire::Connect(wire::SocketPath(place.Directory())))
            daemon_ = ConnectRemoteService(*daemon, console_, interruption_);
        if (!daemon_) files_ = ScanDataFiles(place_);
    } catch (const std::exception&) {
        // Nothing is offered then.
    }
}

LiveNames::~LiveNames() = default;

Names LiveNames::Objects() {
    if (daemon_) return askFor([this] { return daemon_->ObjectNames(); });
    Names names;
    for (const ScannedFile& file : files_)
        for (const DataObject& object : file.data.objects) names.push_back(object.name);
    return names;
}

Names LiveNames::Boards() {
    if (daemon_) return askFor([this] { return daemon_->BoardNames(); });
    Names names = Objects();
    std::erase_if(names,
                  [](const std::string& name) { return KindOf(name) != ObjectKind::kBoard; });
    return names;
}

Names LiveNames::Products() {
    std::set<std::string> products;
    if (daemon_)
        for (const std::string& product : askFor([this] {
                 Names all;
                 for (const ModuleFacts& module : daemon_->Modules())
                     all.insert(all.end(), module.products.begin(), module.products.end());
                 return all;
             }))
            products.insert(product);
    for (const ScannedFile& file : files_)
        for (const DataObject& object : file.data.objects)
            if (const DataEntry* product = object.Find("Product")) products.insert(product->value);
    return {products.begin(), products.end()};
}

Names LiveNames::Keywords(const std::string& object) {
    if (daemon_)
        return askFor([&] {
            Names names;
            for (const KeywordFacts& keyword : daemon_->ReadObject(object, {}))
                names.push_back(keyword.name);
            return names;
        });
    Names names;
    const NameLess less;
    for (const ScannedFile& file : files_)
        for (const DataObject& one : file.data.objects) {
            if (less(one.name, object) || less(object, one.name)) continue;
            for (const DataEntry& entry : one.entries)
                if (entry.name.find('?') == std::string::npos) names.push_back(entry.name);
        }
    return names;
}

Names LiveNames::Choices(const std::string& object, const std::string& keyword) {
    if (!daemon_) return {};
    return askFor([&] {
        Names choices;
        for (const KeywordFacts& facts : daemon_->DescribeObject(object, {keyword}))
            for (const auto& [name, value] : facts.qualifiers)
                if (name.starts_with("Choices[")) choices.push_back(value);
        return choices;
    });
}

}  // namespace oam
