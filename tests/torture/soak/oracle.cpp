#include "oracle.h"

#include <sys/mman.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace oam::torture {

const char* NameOf(Verb verb) {
    switch (verb) {
        case Verb::kCreate:
            return "create";
        case Verb::kChange:
            return "change";
        case Verb::kDelete:
            return "delete";
        case Verb::kSettings:
            return "settings";
        case Verb::kExport:
            return "export";
        case Verb::kImport:
            return "import";
    }
    return "?";
}

std::string TextOf(const Step& step) {
    char result[32] = "under way";
    if (step.code != Step::kUnderWay)
        std::snprintf(result, sizeof result, "0x%x", unsigned{step.code});
    return std::string(NameOf(step.verb)) + ' ' + step.object +
           (step.newName[0] != '\0' ? std::string(" -> ") + step.newName : "") + ", " +
           std::to_string(step.basis) + " to " + std::to_string(step.stamp) + ", place " +
           std::to_string(step.place) + " (" + std::to_string(step.begun) + " to " +
           std::to_string(step.ended) + "): " + result;
}

Step& Lane::Next() {
    Step& step = steps_[Count()];
    step.object[0] = step.newName[0] = '\0';
    step.stamp = step.basis = step.begun = step.ended = 0;
    step.place = 0;
    step.code = Step::kUnderWay;
    return step;
}

Oracle& Oracle::Make() {
    void* memory =
        mmap(nullptr, sizeof(Oracle), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        std::perror("mmap");
        std::abort();
    }
    return *static_cast<Oracle*>(memory);
}

void Oracle::Tell(const std::string& text) {
    if (hasFault.exchange(true)) return;
    std::snprintf(fault, sizeof fault, "%s", text.c_str());
}

std::string Oracle::Fault() const { return hasFault ? fault : ""; }

}  // namespace oam::torture
