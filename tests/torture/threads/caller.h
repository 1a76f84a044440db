// One thread's turn at the library: its chance, the objects that it has open, and its calls.
#pragma once

#include <string>
#include <vector>

#include "random.h"
#include "storm.h"
#include "support/places.h"

namespace oam::torture {

// An object as this caller has opened it.
struct Opening {
    unsigned long handle = 0;
    std::string object;
    unsigned mode = 0;
    bool isStored = false;  // by the _oamDb functions, past the object's own rules
};

class Caller {
  public:
    // In a receiver the thread may hold the service's locks: it waits for nobody.
    enum class Where { kOnItsOwn, kInReceiver };

    Caller(Storm& storm, unsigned seed, Where where);
    // Closes what it has open.
    ~Caller();
    Caller(const Caller&) = delete;
    Caller& operator=(const Caller&) = delete;

    // One call of a function chosen by chance.
    void MakeOne();

    // ---- For the rows

    template <class Function>
    unsigned Call(const char* name, Codes documented, Function function) {
        unsigned code;
        {
            const InCall here(name);
            code = function();
        }
        storm_.Judge(name, code, documented);
        return code;
    }

    Random& Chance() { return random_; }
    Storm& TheStorm() { return storm_; }
    unsigned long Client() const { return client_; }
    bool IsInReceiver() const { return where_ == Where::kInReceiver; }
    std::string ExportFile() const;
    // Any of them, or the one that a receiver was told about.
    std::string Board();
    std::string Object();
    void Prefer(const std::string& object) { preferred_ = object; }

    // Opens the object and keeps the handle. Null when it was refused, or nobody is to open now.
    const Opening* Open(const std::string& object, unsigned mode, bool isStored);
    // One that is open already, or is opened for it.
    const Opening* SomeOpening(bool isStored, unsigned mode);
    void Close(const Opening& opening, bool isTold);
    void CloseAll();
    // The service has closed what this client had open.
    void ForgetClients();

  private:
    Storm& storm_;
    Random random_;
    const Where where_;
    const unsigned long client_;
    std::string preferred_;
    std::vector<Opening> openings_;
};

}  // namespace oam::torture
