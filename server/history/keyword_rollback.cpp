#include "history/keyword_rollback.h"

namespace oam::server {

KeywordRollback RollBackKeywords(const Keywords& now, const Keywords& then) {
    KeywordRollback rollback;
    for (const KeywordChange& change : CompareKeywords(now, then)) {
        const bool isQualifier = change.keyword.find('?') != std::string::npos;
        if (change.oldValue && change.newValue && !isQualifier)
            rollback.assignments.push_back({change.keyword, *change.newValue});
        else
            rollback.others.push_back(change);
    }
    return rollback;
}

}  // namespace oam::server
