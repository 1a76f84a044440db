#include "fleet/link/setup.h"

#include "fleet/link/stream.h"
#include "fleet/names.h"

namespace oam::fleet {
namespace {

constexpr std::int64_t kSecond = 1'000'000'000;
// For how long a stream knows an id. What comes again later is found out by the last one's number.
constexpr std::int64_t kIdsKnown = 120 * kSecond;

// Which refers to the name and the subjects.
jsStreamConfig begun(const char* name, const char** subjects, const FleetPlan& plan) {
    jsStreamConfig config;
    Require(jsStreamConfig_Init(&config), std::string("cannot make the stream ") + name);
    config.Name = name;
    config.Subjects = subjects;
    config.SubjectsLen = 1;
    config.Replicas = plan.replicas;
    config.Duplicates = kIdsKnown;
    config.AllowDirect = true;
    return config;
}

MadeStream make(Link& link, jsStreamConfig& config) {
    jsErrCode error = {};
    const std::string what = std::string("cannot make the stream ") + config.Name;
    const bool wasThere = LookAtStream(link, config.Name).has_value();
    const auto put = wasThere ? js_UpdateStream : js_AddStream;
    Require(put(nullptr, link.Streams(), &config, nullptr, &error), what, error);
    return {config.Name, !wasThere};
}

MadeStream makeBucket(Link& link, const char* bucket, const FleetPlan& plan, bool isPresence) {
    const std::string name = BucketStream(bucket);
    const std::string subject = BucketSubject(bucket, ">");
    const char* subjects[] = {subject.c_str()};
    jsStreamConfig config = begun(name.c_str(), subjects, plan);
    config.MaxMsgsPerSubject = 1;
    config.AllowRollup = true;
    config.DenyDelete = true;
    config.Discard = js_DiscardNew;
    if (isPresence) {
        // One server alone forgets with its end that there ever was such a bucket.
        if (plan.replicas > 1) config.Storage = js_MemoryStorage;
        config.MaxAge = plan.presenceAge.count() * kSecond;
        if (config.MaxAge < config.Duplicates) config.Duplicates = config.MaxAge;
    }
    return make(link, config);
}

}  // namespace

std::vector<MadeStream> MakeFleet(Link& link, const FleetPlan& plan) {
    std::vector<MadeStream> made;
    const char* subjects[] = {kAlertSubjects};
    jsStreamConfig alerts = begun(kAlertStream, subjects, plan);
    alerts.MaxAge = plan.alertAge.count() * kSecond;
    if (plan.alertBytes > 0) alerts.MaxBytes = plan.alertBytes;
    if (alerts.MaxAge > 0 && alerts.MaxAge < alerts.Duplicates) alerts.Duplicates = alerts.MaxAge;
    made.push_back(make(link, alerts));
    made.push_back(makeBucket(link, kHostBucket, plan, false));
    made.push_back(makeBucket(link, kBoardBucket, plan, false));
    made.push_back(makeBucket(link, kPresenceBucket, plan, true));
    return made;
}

}  // namespace oam::fleet
