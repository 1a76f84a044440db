#include "configuration/configuration_keeper.h"

#include "journal/journal.h"

namespace oam::server {

ConfigurationKeeper::ConfigurationKeeper(const Installation& place, const std::string& book,
                                         Journal& journal)
    : journal_(journal),
      history_(book, place, [this](const std::string& text) { Complain(text); }) {}

void ConfigurationKeeper::BeforeStart() try {
    for (const std::string& sentence : history_.RestoreSpoiled()) Complain(sentence);
} catch (const std::exception& error) {
    Complain(error.what());
}

void ConfigurationKeeper::AfterStart() try {
    (void)history_.RecordUnannounced();
} catch (const std::exception& error) {
    Complain(error.what());
}

std::uint64_t ConfigurationKeeper::Change(const std::string& user, const std::string& action,
                                          const std::string& object,
                                          const std::function<void()>& change) {
    History::Announcement announcement(history_, {user, action, {}}, object);
    const auto record = [&]() -> std::uint64_t {
        try {
            const std::uint64_t generation = announcement.Record();
            if (generation != 0) journal_.Deed(user, action, object, generation);
            return generation;
        } catch (const std::exception& error) {
            Complain(error.what());
            return 0;
        }
    };
    try {
        change();
    } catch (...) {
        (void)record();
        throw;
    }
    return record();
}

void ConfigurationKeeper::Complain(const std::string& text) const {
    journal_.Say(Priority::kError, text);
}

}  // namespace oam::server
