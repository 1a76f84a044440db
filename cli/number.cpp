#include "number.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <string>

namespace oam {

std::optional<unsigned> ParseNumber(std::string_view text) {
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (hexadecimal) text.remove_prefix(2);
    unsigned value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, hexadecimal ? 16 : 10);
    if (error != std::errc() || stop != end) return std::nullopt;
    return value;
}

CLI::Option* AddNumber(CLI::App& app, const char* name, unsigned* value, NumberRange range,
                       const char* description) {
    const auto keep = [value](const std::string& text) { *value = ParseNumber(text).value_or(0); };
    const auto fits = [range](const std::string& text) -> std::string {
        const auto number = ParseNumber(text);
        if (number && *number >= range.least && *number <= range.most) return {};
        return "not a number from " + std::to_string(range.least) + " to " +
               std::to_string(range.most) + ": " + text;
    };
    return app.add_option_function<std::string>(name, keep, description)
        ->type_name("N")
        ->check(CLI::Validator(fits, ""));
}

}  // namespace oam
