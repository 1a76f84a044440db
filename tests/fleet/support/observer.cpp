#include "observer.h"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

#include "await.h"

namespace oam::test {
namespace {

using Options = std::unique_ptr<natsOptions, void (*)(natsOptions*)>;
using Message = std::unique_ptr<natsMsg, void (*)(natsMsg*)>;

constexpr int kWait = 5000;  // milliseconds for one answer

// Where the rights of a client of this name have its answers come; names here have dots at most.
std::string inboxOf(const std::string& name) {
    std::string inbox = "_INBOX.";
    for (const char c : name) inbox += c == '.' ? std::string("=2E") : std::string(1, c);
    return inbox;
}

natsStatus setServers(natsOptions* options, const std::string& urls) {
    std::vector<std::string> each;
    std::istringstream list(urls);
    for (std::string url; std::getline(list, url, ',');) each.push_back(url);
    std::vector<const char*> servers;
    for (const std::string& url : each) servers.push_back(url.c_str());
    return natsOptions_SetServers(options, servers.data(), static_cast<int>(servers.size()));
}

Options optionsOf(const std::string& urls, const Papers& papers) {
    natsOptions* made = nullptr;
    if (natsOptions_Create(&made) != NATS_OK) throw std::bad_alloc();
    Options options(made, &natsOptions_Destroy);
    natsStatus status = setServers(made, urls);
    if (status == NATS_OK)
        status = natsOptions_LoadCATrustedCertificates(made, papers.authorities.c_str());
    if (status == NATS_OK && !papers.certificate.empty())
        status =
            natsOptions_LoadCertificatesChain(made, papers.certificate.c_str(), papers.key.c_str());
    if (status == NATS_OK)
        status = natsOptions_SetCustomInboxPrefix(made, inboxOf(papers.name).c_str());
    if (status == NATS_OK) status = natsOptions_SetTimeout(made, kWait);
    if (status == NATS_OK) status = natsOptions_SetMaxReconnect(made, -1);
    if (status == NATS_OK) status = natsOptions_SetReconnectWait(made, 100);
    if (status != NATS_OK) throw std::runtime_error(nats_GetLastError(nullptr));
    return options;
}

jsOptions streamOptions() {
    jsOptions options;
    jsOptions_Init(&options);
    options.Domain = "hub";
    options.Wait = kWait;
    return options;
}

std::string textOf(const char* text) { return text == nullptr ? "" : text; }

Kept keptIn(natsMsg* message) {
    Kept kept;
    kept.subject = natsMsg_GetSubject(message);
    kept.data.assign(natsMsg_GetData(message),
                     static_cast<std::size_t>(natsMsg_GetDataLength(message)));
    const char* id = nullptr;
    if (natsMsgHeader_Get(message, "Nats-Msg-Id", &id) == NATS_OK) kept.id = id;
    jsMsgMetaData* facts = nullptr;
    if (natsMsg_GetMetaData(&facts, message) == NATS_OK) {
        kept.sequence = facts->Sequence.Stream;
        jsMsgMetaData_Destroy(facts);
    }
    return kept;
}

}  // namespace

Observer::Observer(const std::string& urls, const Papers& papers) {
    const Options options = optionsOf(urls, papers);
    if (!Await([&] { return natsConnection_Connect(&connection_, options.get()) == NATS_OK; }))
        throw std::runtime_error(textOf(nats_GetLastError(nullptr)));
    jsOptions stream = streamOptions();
    if (natsConnection_JetStream(&streams_, connection_, &stream) != NATS_OK) {
        natsConnection_Destroy(connection_);
        throw std::bad_alloc();
    }
}

Observer::~Observer() {
    jsCtx_Destroy(streams_);
    natsConnection_Close(connection_);
    natsConnection_Destroy(connection_);
}

std::string Observer::WhyRefused(const std::string& urls, const Papers& papers) {
    natsConnection* connection = nullptr;
    if (natsConnection_Connect(&connection, optionsOf(urls, papers).get()) != NATS_OK)
        return textOf(nats_GetLastError(nullptr));
    natsConnection_Destroy(connection);
    return "";
}

bool Observer::CanKeep() const {
    jsAccountInfo* info = nullptr;
    if (js_GetAccountInfo(&info, streams_, nullptr, nullptr) != NATS_OK) return false;
    jsAccountInfo_Destroy(info);
    return true;
}

void Observer::MakeStream(const std::string& name, const std::string& subject) const {
    jsStreamConfig config;
    jsStreamConfig_Init(&config);
    const char* subjects[] = {subject.c_str()};
    config.Name = name.c_str();
    config.Subjects = subjects;
    config.SubjectsLen = 1;
    config.Replicas = 3;
    EXPECT_TRUE(Await([&] {
        return js_AddStream(nullptr, streams_, &config, nullptr, nullptr) == NATS_OK;
    })) << nats_GetLastError(nullptr);
}

std::vector<std::string> Observer::Streams() const {
    std::vector<std::string> names;
    jsStreamNamesList* list = nullptr;
    if (js_StreamNames(&list, streams_, nullptr, nullptr) != NATS_OK) return names;
    for (int i = 0; i < list->Count; ++i) names.emplace_back(list->List[i]);
    jsStreamNamesList_Destroy(list);
    return names;
}

std::optional<StreamFacts> Observer::Facts(const std::string& stream) const {
    jsStreamInfo* info = nullptr;
    if (js_GetStreamInfo(&info, streams_, stream.c_str(), nullptr, nullptr) != NATS_OK)
        return std::nullopt;
    StreamFacts facts;
    facts.messages = info->State.Msgs;
    facts.bytes = info->State.Bytes;
    facts.last = info->State.LastSeq;
    facts.replicas = info->Config->Replicas;
    if (info->Cluster != nullptr) {
        facts.leader = textOf(info->Cluster->Leader);
        facts.isCurrent = info->Cluster->ReplicasLen == facts.replicas - 1;
        for (int i = 0; i < info->Cluster->ReplicasLen; ++i)
            facts.isCurrent = facts.isCurrent && info->Cluster->Replicas[i]->Current;
    }
    jsStreamInfo_Destroy(info);
    return facts;
}

std::vector<Kept> Observer::Records(const std::string& stream, const std::string& subject) const {
    std::vector<Kept> records;
    const auto facts = Facts(stream);
    EXPECT_TRUE(facts) << nats_GetLastError(nullptr);
    if (!facts || facts->messages == 0) return records;
    jsSubOptions options;
    jsSubOptions_Init(&options);
    options.Stream = stream.c_str();
    options.Ordered = true;
    natsSubscription* subscription = nullptr;
    EXPECT_TRUE(Await([&] {
        return js_SubscribeSync(&subscription, streams_, ">", nullptr, &options, nullptr) ==
               NATS_OK;
    })) << nats_GetLastError(nullptr);
    for (std::uint64_t at = 0; at < facts->last;) {
        natsMsg* next = nullptr;
        const natsStatus status = natsSubscription_NextMsg(&next, subscription, 20 * kWait);
        EXPECT_EQ(status, NATS_OK) << natsStatus_GetText(status);
        if (status != NATS_OK) break;
        Kept kept = keptIn(Message(next, &natsMsg_Destroy).get());
        at = kept.sequence;
        if (subject.empty() || kept.subject == subject) records.push_back(std::move(kept));
    }
    natsSubscription_Destroy(subscription);
    return records;
}

std::string Observer::Last(const std::string& stream, const std::string& subject) const {
    natsMsg* last = nullptr;
    if (js_GetLastMsg(&last, streams_, stream.c_str(), subject.c_str(), nullptr, nullptr) !=
        NATS_OK)
        return "";
    const Message message(last, &natsMsg_Destroy);
    return keptIn(last).data;
}

bool Observer::Publish(const std::string& subject, const std::string& data,
                       const std::string& id) const {
    jsPubOptions options;
    jsPubOptions_Init(&options);
    options.MaxWait = kWait;
    if (!id.empty()) options.MsgId = id.c_str();
    return js_Publish(nullptr, streams_, subject.c_str(), data.data(),
                      static_cast<int>(data.size()), &options, nullptr) == NATS_OK;
}

std::optional<std::string> Observer::Request(const std::string& subject, const std::string& data,
                                             int milliseconds) const {
    natsMsg* answer = nullptr;
    if (natsConnection_Request(&answer, connection_, subject.c_str(), data.data(),
                               static_cast<int>(data.size()), milliseconds) != NATS_OK)
        return std::nullopt;
    const Message message(answer, &natsMsg_Destroy);
    return std::string(natsMsg_GetData(answer),
                       static_cast<std::size_t>(natsMsg_GetDataLength(answer)));
}

std::string Observer::LastError() const {
    EXPECT_EQ(natsConnection_FlushTimeout(connection_, 20 * kWait), NATS_OK);
    const char* error = nullptr;
    (void)natsConnection_GetLastError(connection_, &error);
    return textOf(error);
}

}  // namespace oam::test
