#include "arguments.h"

#include <CLI/CLI.hpp>

#include "number_option.h"

namespace oam {

void Arguments::Required(const char* name, std::string* value, const std::string& description) {
    app_.add_option(name, *value, description)->required();
}

void Arguments::Optional(const char* name, std::optional<std::string>* value,
                         const std::string& description, const char* placeholder) {
    const auto store = [value](const std::string& text) { *value = text; };
    CLI::Option* option = app_.add_option_function<std::string>(name, store, description);
    if (placeholder) option->type_name(placeholder);
}

void Arguments::Required(const char* name, std::vector<std::string>* values,
                         const std::string& description) {
    app_.add_option(name, *values, description)->required();
}

void Arguments::Optional(const char* name, std::vector<std::string>* values,
                         const std::string& description) {
    app_.add_option(name, *values, description);
}

void Arguments::Flag(const char* name, bool* value, const std::string& description) {
    app_.add_flag(name, *value, description);
}

void Arguments::FlagWithText(const char* name, std::optional<std::string>* value,
                             const char* placeholder, const std::string& description) {
    // What the library gives for a value that was left out.
    constexpr const char* kLeftOut = "{}";
    const auto store = [value](const std::string& text) { *value = text == kLeftOut ? "" : text; };
    app_.add_option_function<std::string>(name, store, description)
        ->type_name(placeholder)
        ->expected(0, 1);
}

void Arguments::Several(const char* name, int count, std::vector<std::string>* values,
                        const char* placeholder, const std::string& description) {
    app_.add_option(name, *values, description)->type_name(placeholder)->expected(count);
}

void Arguments::Number(const char* name, std::optional<unsigned>* value, NumberRange range,
                       const std::string& description) {
    AddNumber(
        app_, name, [value](unsigned number) { *value = number; }, range, description);
}

}  // namespace oam
