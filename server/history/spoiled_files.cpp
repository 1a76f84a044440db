#include "history/spoiled_files.h"

#include <stdexcept>
#include <utility>

#include "failure.h"
#include "history/file_identity.h"
#include "history/object_key.h"
#include "history/replaced_file.h"

namespace oam::server {
namespace {

// The service takes files of this name away at its start, should the machine stop here.
constexpr const char* kBesideSuffix = ".saving";

std::string asOf(const KnownObject& object) {
    return Quoted(object.name) + " is put back as of generation " +
           std::to_string(object.generation);
}

}  // namespace

SpoiledFiles::SpoiledFiles(const ChangeFinder& files, const KnownObjects& known,
                           std::string directory, std::string configuration)
    : files_(files),
      known_(known),
      directory_(std::move(directory)),
      configuration_(std::move(configuration)) {}

SpoilReport SpoiledFiles::PutBack(const ChangeFinder::BytesOf& bytesOf,
                                  const MayBeDeleted& mayBeDeleted) {
    for (const auto& [name, file] : files_.Unreadable()) PutBackSpoiled(file, bytesOf);
    for (const auto& [key, object] : known_) {
        if (!mayBeDeleted) break;
        if (files_.IsHeld(key) || FileIdentity::Of(directory_ + '/' + object.file)) continue;
        if (mayBeDeleted(object))
            report_.sentences.push_back(Quoted(object.file) +
                                        " is missing: " + Quoted(object.name) +
                                        " counts as deleted, for the service ran without the "
                                        "daemon since");
        else
            PutBackMissing(object, bytesOf);
    }
    return std::move(report_);
}

// The object that the file held; nobody when that is in another file now.
const KnownObject* SpoiledFiles::OwnerOf(const std::string& file) const {
    for (const auto& [key, object] : known_)
        if (object.file == file && !files_.IsHeld(key)) return &object;
    return nullptr;
}

void SpoiledFiles::PutBackSpoiled(const FoundFile& file, const ChangeFinder::BytesOf& bytesOf) {
    const KnownObject* const owner = OwnerOf(file.name);
    const bool isSpoiled = file.condition == FoundFile::Condition::kSpoiled;
    if (owner == nullptr || !isSpoiled) {
        report_.sentences.push_back(
            file.why + (isSpoiled ? "; the history has nothing to put in its place" : "") +
            ": it is left as it is");
        return;
    }
    const std::string path = directory_ + '/' + file.name;
    const std::string kept = configuration_ + '/' + file.name;
    std::string aside;
    try {
        NewFile good(kept + kBesideSuffix, bytesOf(owner->name), path);
        aside = SetSpoiledAside(path, kept);
        good.MoveTo(path);
    } catch (const std::runtime_error& failure) {  // also of the book
        report_.lost.push_back(owner->name);
        report_.sentences.push_back(file.why + ": " + Quoted(owner->name) +
                                    " cannot be put back: " + failure.what());
        return;
    }
    report_.restored.push_back(owner->name);
    report_.sentences.push_back(file.why + ": " + asOf(*owner) + "; the spoiled file is " +
                                Quoted(aside.substr(configuration_.size() + 1)));
}

void SpoiledFiles::PutBackMissing(const KnownObject& object, const ChangeFinder::BytesOf& bytesOf) {
    try {
        NewFile(configuration_ + '/' + object.file + kBesideSuffix, bytesOf(object.name), {})
            .MoveTo(directory_ + '/' + object.file);
    } catch (const std::runtime_error& failure) {  // also of the book
        report_.lost.push_back(object.name);
        report_.sentences.push_back(Quoted(object.file) + " is missing: " + Quoted(object.name) +
                                    " cannot be put back: " + failure.what());
        return;
    }
    report_.restored.push_back(object.name);
    report_.sentences.push_back(Quoted(object.file) + " was missing: " + asOf(object));
}

}  // namespace oam::server
