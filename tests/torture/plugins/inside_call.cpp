#include "inside_call.h"

namespace oam::torture {

std::string NameOf(const InsideCall& call) {
    return *call.what != '\0' ? std::string(call.function) + " (" + call.what + ')' : call.function;
}

std::vector<InsideCall> AllInsideCalls() {
    std::vector<InsideCall> all;
    for (auto* family : {&LifecycleCalls, &ObjectCalls, &DatabaseCalls, &ConfigurationCalls,
                         &BoardCalls, &QueryCalls, &ShadowCalls})
        for (InsideCall& call : family()) all.push_back(std::move(call));
    return all;
}

}  // namespace oam::torture
