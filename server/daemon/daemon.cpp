#include "daemon/daemon.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <future>
#include <sstream>

#include "alerts/alert_writer.h"
#include "configuration/configuration_keeper.h"
#include "configuration/scratch_file.h"
#include "daemon/notifier.h"
#include "daemon/signals.h"
#include "daemon/start_failure.h"
#include "installation.h"
#include "journal/alert_journal.h"
#include "journal/journal.h"
#include "journal/library_logs.h"
#include "lock_file.h"
#include "metrics/metrics_listener.h"
#include "operations/operation_store.h"
#include "services/alerts_service.h"
#include "services/boards_service.h"
#include "services/configuration_service.h"
#include "services/control.h"
#include "services/host_service.h"
#include "services/objects_service.h"
#include "services/operations_service.h"
#include "services/sessions_service.h"
#include "store/bell.h"
#include "store/numbers.h"
#include "store/store_writer.h"
#include "transport/tls_check.h"
#include "version.h"
#include "wire/local_socket.h"

namespace oam::server {
namespace {

constexpr std::size_t kAlertsInMemory = 20000;
constexpr std::size_t kOperationsKept = 10000;
constexpr std::size_t kMostConnections = 1000;
constexpr auto kGrace = std::chrono::seconds(5);

// "<directory>/oam/roles.conf" counts when it is there; a file that was named must be.
std::shared_ptr<const Roles> readRoles(const Settings& settings, const Installation& place) {
    const bool isNamed = !settings.rolesFile.empty();
    const std::string path = isNamed ? settings.rolesFile : place.Path("/oam/roles.conf");
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        if (isNamed) throw RolesError("cannot read " + path);
        return std::make_shared<const Roles>();
    }
    std::ostringstream text;
    text << file.rdbuf();
    return std::make_shared<const Roles>(Roles::Parse(text.str(), path));
}

// The life of the service, with what goes before and after it.
class Control : public ServiceControl {
  public:
    Control(ServiceHost& host, OperationBook& operations, const Installation& place,
            ConfigurationKeeper& configuration, Journal& journal)
        : host_(host),
          operations_(operations),
          place_(place),
          configuration_(configuration),
          journal_(journal) {}

    void Start() override {
        configuration_.BeforeStart();
        const auto before = std::chrono::system_clock::now();
        if (const unsigned code = host_.Start()) throw StartFailure(code, place_, before, journal_);
        configuration_.AfterStart();
    }
    void Stop() override {
        host_.Stop();
        // Every outcome that was to come has come.
        operations_.GiveUpRunning("the service was stopped before the outcome came");
    }

  private:
    ServiceHost& host_;
    OperationBook& operations_;
    const Installation& place_;
    ConfigurationKeeper& configuration_;
    Journal& journal_;
};

class Daemon {
  public:
    Daemon(const Settings& settings, const Installation& place, Journal& journal)
        : settings_(settings),
          place_(place),
          journal_(journal),
          numbers_(place.Path("/oam/oamd.numbers"), access(place.Path(kBook).c_str(), F_OK) != 0),
          ring_(numbers_.LastAlert(), kAlertsInMemory, &bell_),
          operations_(numbers_.Start(), kOperationsKept, &bell_),
          alertWriter_(ring_, numbers_, settings.alertsKept, ComplainTo(journal)),
          operationStore_(operations_, kOperationsKept),
          callers_(kMostConnections),
          lanes_(Lanes::Limits{}),
          calls_(callers_, lanes_, journal),
          names_(lanes_),
          configuration_(place, place.Path(kBook), journal),
          host_(ring_, operations_),
          control_(host_, operations_, place, configuration_, journal),
          core_{calls_,           lanes_,         host_,    ring_,   names_,
                operations_,      configuration_, control_, journal, place.Directory(),
                place.Path(kBook)},
          sessionsService_(core_, sessions_) {
        if (!numbers_.Trouble().empty()) journal.Say(Priority::kError, numbers_.Trouble());
        ScratchFile::RemoveLeftOver(place.Directory());
        LoadOperations();
        writer_.emplace(bell_, place.Path(kBook),
                        std::vector<StoreJob*>{&alertWriter_, &operationStore_},
                        ComplainTo(journal));
        alertJournal_.emplace(ring_, journal, [this](const std::string& operation) {
            const auto record = operations_.Find(operation);
            return record ? record->user : std::string();
        });
        host_.SetToClient([this](unsigned long client, const StoredAlert& alert) {
            sessions_.Deliver(client, alert);
        });
    }

    ~Daemon() {
        // A plug-in that hangs does not keep the alerts from the disk.
        if (!lanes_.Alone(kGrace, [this] { host_.Stop(); })) EndWithoutCall();
        CloseBook();
    }

    void Serve(const Signals& signals, Notifier& notifier) {
        calls_.SetRoles(readRoles(settings_, place_));
        TransportSettings where{settings_.socketPath, Notifier::InheritedSocket(),
                                settings_.tcpAddress, settings_.tls};
        notifier.Status("starting the service");
        control_.Start();
        notifier.Status("opening the listeners");
        if (where.socketPath.empty()) where.socketPath = wire::SocketPath(place_.Directory());
        where.requests = &requests_;
        Transport transport(where, callers_,
                            {&objects_, &boards_, &operationsService_, &alerts_,
                             &configurationService_, &hostService_, &sessionsService_});
        const auto metricsListener = ServeMetrics();
        transport.SetServing(true);
        notifier.Ready();
        journal_.Say(Priority::kNotice,
                     std::string("oamd ") + kVersion + " serves " + place_.Directory() + " at " +
                         where.socketPath +
                         (transport.Port() ? " and TCP port " + std::to_string(transport.Port())
                                           : std::string()) +
                         (metricsListener ? ", metrics at " + metricsListener->Address() : ""));
        Wait(signals, notifier);
        notifier.Stopping();
        journal_.Say(Priority::kNotice, "ending");
        transport.SetServing(false);
        // gRPC waits for every call, also for one in a plug-in that hangs.
        auto closed = std::async(std::launch::async, [&transport] { transport.Shutdown(kGrace); });
        if (closed.wait_for(2 * kGrace) != std::future_status::ready) EndWithoutCall();
    }

  private:
    [[noreturn]] void EndWithoutCall() {
        journal_.Say(Priority::kError, "a call does not end; ending without it");
        CloseBook();
        _exit(kFailed);
    }

    static constexpr const char* kBook = "/oam/oamd.db";

    static StoreWriter::Complain ComplainTo(Journal& journal) {
        return
            [&journal](const std::string& complaint) { journal.Say(Priority::kError, complaint); };
    }

    std::unique_ptr<MetricsListener> ServeMetrics() {
        if (settings_.metricsAddress.empty()) return nullptr;
        return std::make_unique<MetricsListener>(ListenAddress::Parse(settings_.metricsAddress),
                                                 [this] { return metrics_.Text(); });
    }

    // The daemon goes on without its book.
    void LoadOperations() try {
        std::string aside;
        Database database(place_.Path(kBook), &aside);
        if (!aside.empty())
            journal_.Say(Priority::kError, "the book was spoiled; it is kept as " + aside +
                                               ", and a new one is begun");
        operations_.Load(OperationStore::Load(database));
    } catch (const StoreError& error) {
        journal_.Say(Priority::kError, error.what());
    }

    // The watchers end with the ring, and the writer takes the last of it.
    void CloseBook() {
        ring_.Close();
        writer_.reset();
        alertJournal_.reset();
    }

    void Wait(const Signals& signals, Notifier& notifier) {
        for (;;) {
            constexpr auto kLong = std::chrono::hours(1);
            switch (signals.Next(kLong)) {
                case Signal::kEnd:
                    return;
                case Signal::kReload:
                    notifier.Reloading();
                    Reload();
                    notifier.Reloaded();
                    break;
                case Signal::kNone:
                    break;
            }
        }
    }

    // What cannot be read changes nothing.
    void Reload() {
        try {
            calls_.SetRoles(readRoles(settings_, place_));
            journal_.Say(Priority::kNotice, "the roles were read again");
        } catch (const RolesError& error) {
            journal_.Say(Priority::kError,
                         std::string(error.what()) + "; the roles stay as they were");
        }
        if (settings_.tcpAddress.empty()) return;
        // The transport looks at them every second by itself; here is said what is wrong.
        try {
            CheckTlsFiles(settings_.tls);
            journal_.Say(Priority::kNotice, "the certificates are good");
        } catch (const std::runtime_error& error) {
            journal_.Say(Priority::kError,
                         std::string("new connections over TCP may be refused: ") + error.what());
        }
    }

    const Settings& settings_;
    const Installation& place_;
    Journal& journal_;
    Bell bell_;
    Numbers numbers_;
    AlertRing ring_;
    OperationBook operations_;
    AlertWriter alertWriter_;
    OperationStore operationStore_;
    std::optional<StoreWriter> writer_;
    std::optional<AlertJournal> alertJournal_;
    Callers callers_;
    SessionTable sessions_;
    Lanes lanes_;
    Calls calls_;
    CodeNames names_;
    ConfigurationKeeper configuration_;
    ServiceHost host_;
    Control control_;
    Core core_;
    ObjectsService objects_{core_};
    BoardsService boards_{core_};
    OperationsService operationsService_{core_};
    AlertsService alerts_{core_};
    ConfigurationService configurationService_{core_};
    HostService hostService_{core_};
    SessionsService sessionsService_;
    RequestCounts requests_;
    Metrics metrics_{{ring_, alertWriter_, host_.Alerts(), operations_, requests_, lanes_,
                      [this] { return host_.IsRunning(); }, [this] { return alerts_.Watchers(); },
                      [this] { return sessions_.Count(); }, kVersion}};
};

}  // namespace

int RunDaemon(const Settings& settings) {
    const Signals signals;
    Journal journal;
    const LibraryLogs logs(journal);
    Notifier notifier;
    try {
        const Installation place = Installation::Locate(
            settings.directory.empty() ? std::nullopt : std::optional(settings.directory));
        place.RequireReady(R_OK | W_OK | X_OK);
        const LockFile lock(place, "oamd");
        notifier.Status("reading what was kept");
        Daemon(settings, place, journal).Serve(signals, notifier);
        return kDone;
    } catch (const Failure& failure) {
        notifier.Status(std::string("failed: ") + failure.what());
        journal.Say(Priority::kError, failure.what());
        if (!failure.Advice().empty()) journal.Say(Priority::kError, failure.Advice());
    } catch (const std::exception& error) {
        notifier.Status(std::string("failed: ") + error.what());
        journal.Say(Priority::kError, error.what());
    }
    return kFailed;
}

}  // namespace oam::server
