#include "kept_keywords.h"

#include "base/forever.h"

void KeptKeywords::Add(KOR_CMObject* object, size_t bytes) noexcept {
    Remove(object);
    KeptLink* link = object->Kept();
    *link = {ends_.before, &ends_, object, bytes};
    link->before->after = link;
    ends_.before = link;
    bytes_ += bytes;
    while (bytes_ > kMostKeptBytes) ends_.after->object->DropKept();
}

void KeptKeywords::Remove(KOR_CMObject* object) noexcept {
    KeptLink* link = object->Kept();
    if (link->object == nullptr) return;
    link->before->after = link->after;
    link->after->before = link->before;
    bytes_ -= link->bytes;
    *link = {};
}

KeptKeywords::Trust::Trust() noexcept { ++keptKeywords().trusts_; }

KeptKeywords::Trust::~Trust() { --keptKeywords().trusts_; }

KeptKeywords& keptKeywords() noexcept {
    static oam::Forever<KeptKeywords> kept;
    return kept.Get();
}
