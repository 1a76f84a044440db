// What the soak knows of a configuration: which boards there are, which change each one shows, and
// the settings.
//
// Every change writes five keywords of a board in one commit, all made from the change's stamp and
// of a length of their own. So a board tells which change it shows, and whether it shows it whole.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "support/data_file.h"

namespace oam::torture {

constexpr const char* kMadeKeyword = "Made";  // the stamp of the board's creation
constexpr const char* kStampKeyword = "Driver.Name";
// The five keywords with their values.
test::Entries MarksOf(std::uint64_t stamp);

// The settings as three bits, each by its keyword.
constexpr const char* kSettingNames[] = {"AutoStartEnabled", "AutoStopEnabled",
                                         "SynchronizeEnabled"};
constexpr unsigned kAllSettings = 8;

struct Board {
    std::uint64_t made = 0;
    std::uint64_t stamp = 0;
    bool operator==(const Board&) const = default;
};

struct Configuration {
    std::map<std::string, Board> boards;
    unsigned settings = 0;
    bool operator==(const Configuration&) const = default;
};
std::string TextOf(const Configuration& configuration);

struct Found {
    Configuration configuration;
    // By creation, or by the name of what is no board: everything that no client changes.
    std::map<std::string, std::string> rest;
    std::string fault;  // what is half or out of place
};

// Objects as the living service tells them (StateDigest), or as an export file has them.
Found FromDigest(const std::string& digest);
Found FromExport(const std::string& bytes);

}  // namespace oam::torture
