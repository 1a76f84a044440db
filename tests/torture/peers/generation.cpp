#include "generation.h"

#include <cstdio>
#include <cstring>

namespace oam::torture {
namespace {

// Of a length of its own, so that a shorter text over a longer one is seen.
CBoardIDShadow boardOf(Generation generation, int index) {
    char name[129];
    char driver[129];
    char id[65];
    const int length = static_cast<int>(generation % 50) + index;
    std::snprintf(name, sizeof name, "Board %02d of %llu", index,
                  static_cast<unsigned long long>(generation));
    std::snprintf(driver, sizeof driver, "%llu-%0*d", static_cast<unsigned long long>(generation),
                  length + 1, index);
    std::snprintf(id, sizeof id, "%d-%llu", index, static_cast<unsigned long long>(generation));
    return {name, static_cast<unsigned>(generation), driver, id, generation % 2 == 1};
}

}  // namespace

int BoardsOf(Generation generation) {
    return generation == kNothing ? 0 : static_cast<int>((generation - 1) % kMostShadowBoards) + 1;
}

ShadowImage ImageOf(Generation generation) {
    ShadowImage image(generation % 2 == 1);
    for (int i = 0; i < BoardsOf(generation); ++i) image.Add(boardOf(generation, i));
    return image;
}

oam_result Publish(CBoardIDsShadow& shadow, Generation generation) {
    ShadowImage image = ImageOf(generation);
    return shadow.Publish(image);
}

Generation Understand(const CBoardIDsShadow::Contents& contents, std::string* fault) {
    const Generation generation = contents.Count() > 0 ? contents.At(0).number : kNothing;
    const std::string what = "generation " + std::to_string(generation);
    if (contents.Count() != BoardsOf(generation))
        *fault += what + " with " + std::to_string(contents.Count()) + " boards\n";
    if (contents.IsUsingVxPlugin() != (generation % 2 == 1))
        *fault += what + " with the flag of another\n";
    for (int i = 0; i < contents.Count(); ++i) {
        const CBoardIDShadow expected = boardOf(generation, i);
        const CBoardIDShadow found = contents.At(i);
        if (std::memcmp(static_cast<const void*>(&found), &expected, sizeof found) != 0)
            *fault +=
                what + " with another's board " + std::to_string(i) + ", " + found.name + '\n';
    }
    return generation;
}

Generation Read(CBoardIDsShadow& shadow, std::string* fault) {
    Generation generation = kNothing;
    const oam_result read = shadow.Read([&](const CBoardIDsShadow::Contents& contents) {
        generation = Understand(contents, fault);
        return OAM_SUCCESS;
    });
    if (read != OAM_SUCCESS) *fault += "cannot be read: " + std::to_string(read) + '\n';
    return generation;
}

}  // namespace oam::torture
