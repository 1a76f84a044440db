// A small stand-in for the service: the _oam functions that the plug-in calls, over objects in
// memory.
//
// It keeps the rules that a plug-in can run into: read-write openings are exclusive, new keywords
// and qualifiers need provider mode, texts must fit their buffer, and the board table does not
// answer while the service goes down. One at a time in a process, safe on every thread.
#pragma once

#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "kit/text_scan.h"
#include "oam/entry.h"

namespace oam::sim {

struct RaisedAlert {
    unsigned int code = 0;
    unsigned int severity = 0;
    std::string source;
    std::string text;
    friend bool operator==(const RaisedAlert&, const RaisedAlert&) = default;
    friend std::ostream& operator<<(std::ostream& out, const RaisedAlert& alert) {
        return out << std::hex << alert.code << "/" << alert.severity << " " << alert.source << ": "
                   << alert.text;
    }
};

class FakeService {
  public:
    struct IgnoringCase {
        bool operator()(const std::string& left, const std::string& right) const {
            return kit::lowerCase(left) < kit::lowerCase(right);
        }
    };
    using Entries = std::map<std::string, std::string, IgnoringCase>;

    FakeService();
    ~FakeService();
    FakeService(const FakeService&) = delete;
    FakeService& operator=(const FakeService&) = delete;
    static FakeService& Current();

    // An object with its "Name", and its "Product" when one is given.
    void AddObject(const std::string& name, const std::string& product = "");
    void RemoveObject(const std::string& name);
    void Store(const std::string& object, const std::string& entry, const std::string& value);
    std::optional<std::string> Stored(const std::string& object, const std::string& entry) const;

    // A client's opening, to be handed to the plug-in; Close keeps the changes, Drop does not.
    unsigned long Open(const std::string& object, unsigned int mode);
    void Close(unsigned long handle);
    void Drop(unsigned long handle);

    void StopAnsweringTable() { tableAnswers_ = false; }

    // Called for each alert on its thread, with no lock of the stand-in held.
    void OnAlert(std::function<void(const oam_msg_tag*)> receiver);
    std::vector<RaisedAlert> Alerts() const;
    bool WaitForAlert(const RaisedAlert& alert) const;

    // What the _oam functions do.
    oam_result OpenDb(const std::string& name, unsigned int mode, unsigned long* handle);
    oam_result SetEntry(unsigned long handle, const std::string& entry, const std::string& value,
                        bool isQualifier);
    oam_result GetEntry(unsigned long handle, const std::string& entry, char* buffer,
                        unsigned int size) const;
    oam_result RemoveEntry(unsigned long handle, const std::string& entry);
    bool* Provider(unsigned long handle);
    oam_result NameAt(int index, char* buffer, unsigned int size) const;
    oam_result BoardValue(const std::string& board, const std::string& entry,
                          std::string* value) const;
    oam_result BoardAt(unsigned int bus, unsigned int slot, char* buffer, unsigned int size) const;
    void Raise(const oam_msg_tag* message);

  private:
    struct Opening {
        std::string object;
        bool isWritable = false;
        bool isProvider = false;
        Entries entries;
    };

    mutable std::mutex lock_;
    mutable std::condition_variable raised_;
    std::map<std::string, Entries, IgnoringCase> objects_;
    std::map<unsigned long, Opening> openings_;
    unsigned long nextHandle_ = 100;
    bool tableAnswers_ = true;
    std::function<void(const oam_msg_tag*)> receiver_;
    std::vector<RaisedAlert> alerts_;
};

}  // namespace oam::sim
