// A keyword's qualifiers, read as the type they make: what a client may expect to be accepted and
// refused.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "opened_object.h"

namespace oam::check {

struct Qualifiers {
    bool isReadOnly = false;
    bool isNumber = false;
    int base = 10;
    std::optional<long long> min;
    std::optional<long long> max;
    std::vector<std::string> choices;

    // Of one keyword. What makes no sense is told.
    static Qualifiers Read(const OpenedObject& object, const std::string& keyword);

    bool Allow(const std::string& value) const;
    std::string Written(long long number) const;
    std::optional<long long> NumberOf(const std::string& text) const;
};

bool EqualNoCase(const std::string& left, const std::string& right);

}  // namespace oam::check
