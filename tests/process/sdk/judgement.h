// oam-plugin-check, as the package installs it, on one file.
#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

namespace oam::test {

struct Judgement {
    int status;
    nlohmann::json report;

    // The rules that are broken; notes break none.
    std::set<std::string> Broken() const;
    // What was seen of a rule at an entry.
    std::vector<std::string> Seen(const std::string& rule, const std::string& entry) const;
};

Judgement Judge(const std::filesystem::path& file, const std::vector<std::string>& options = {});

}  // namespace oam::test
