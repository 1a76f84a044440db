#include "number_option.h"

#include <CLI/CLI.hpp>

namespace oam {

CLI::Option* AddNumber(CLI::App& app, const std::string& name,
                       const std::function<void(unsigned)>& store, NumberRange range,
                       const std::string& description) {
    const auto keep = [store](const std::string& text) {
        if (const auto number = ParseNumber(text)) store(*number);
    };
    const auto check = [range](const std::string& text) -> std::string {
        const auto number = ParseNumber(text);
        if (number && *number >= range.least && *number <= range.most) return {};
        return "not a number from " + std::to_string(range.least) + " to " +
               std::to_string(range.most) + ": " + text;
    };
    return app.add_option_function<std::string>(name, keep, description)
        ->type_name("N")
        ->check(CLI::Validator(check, ""));
}

}  // namespace oam
