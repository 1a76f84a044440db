// KOR_CMObject, the base class of every managed object.
//
// An object is a name, the name of its data file, and its keywords: the first opening loads them,
// the last read-write closing saves them. Readers share; a writer is alone. A closed object has
// none, but may keep what it read for as long as its file stays as it was.
//
// Two layers: the public one (Open, SetKeyword, ...) checks the open state and calls the virtual
// Trap operations, so that a kind of object can compute keywords or pass them to a plug-in; the Db
// one works on the stored list. Every call runs under the manager lock.
#pragma once

#include <utility>

#include "base/file_identity.h"
#include "oam/entry.h"
#include "objects/keyword.h"

class CXmlExport;
class DataFileImage;
class DurableFile;
class ObjectSaving;
class KOR_CMObject;

// An object's place among those that keep their keywords while closed (config/kept_keywords.h).
struct KeptLink {
    KeptLink* before = nullptr;
    KeptLink* after = nullptr;
    KOR_CMObject* object = nullptr;  // null: the object keeps none
    size_t bytes = 0;
};

class KOR_CMObject {
  public:
    // Null texts leave the field null. The file is not touched.
    KOR_CMObject(const char* name, const char* dataFileName) noexcept;
    KOR_CMObject(const KOR_CMObject&) = delete;
    KOR_CMObject& operator=(const KOR_CMObject&) = delete;

    virtual ~KOR_CMObject();
    virtual bool IsBoard() const noexcept { return false; }
    // Adds the kind's own keywords to a new or reloaded object.
    virtual oam_result InitKeywords() noexcept { return OAM_SUCCESS; }
    // The object's share of a commit: refuse, apply, or tidy up after either.
    virtual oam_result ValidateChanges() noexcept { return OAM_SUCCESS; }
    virtual void HandleChanges() noexcept {}
    virtual void ValidateChangesCleanup() noexcept {}
    virtual oam_result TrapCreate(const char* /*name*/, const char* /*product*/) noexcept {
        return OAM_SUCCESS;
    }
    virtual oam_result TrapDelete() noexcept { return OAM_SUCCESS; }
    virtual oam_result TrapOpen(unsigned long /*handle*/, unsigned /*mode*/) noexcept {
        return OAM_SUCCESS;
    }
    virtual oam_result TrapClose(unsigned long /*handle*/) noexcept { return OAM_SUCCESS; }
    virtual oam_result TrapSetKeyword(unsigned long handle, const char* name,
                                      const char* value) noexcept;
    virtual oam_result TrapGetKeyword(unsigned long handle, const char* name, char* buffer,
                                      unsigned size) noexcept;
    virtual oam_result TrapSetQualifier(unsigned long handle, const char* keyword,
                                        const char* qualifier, const char* value) noexcept;
    virtual oam_result TrapGetQualifier(unsigned long handle, const char* keyword,
                                        const char* qualifier, char* buffer,
                                        unsigned size) noexcept;

    const char* Name() const noexcept { return name_.OrEmpty(); }
    const char* DataFileName() const noexcept { return dataFileName_.Get(); }
    // A rename that cannot fail; the old name is left in `name`.
    void SwapName(oam::OwnedText* name) noexcept { std::swap(name_, *name); }
    // False, and the object is not complete, when there is no memory.
    bool SetDataFileName(const char* name) noexcept;
    // Whether every text that it was given could be copied.
    bool IsComplete() const noexcept { return isComplete_; }
    int OpenCount() const noexcept { return openCount_; }
    // Of the current opening, or of the last one when closed.
    bool IsReadWrite() const noexcept { return (openMode_ & OAM_OPEN_WRITE) != 0; }
    const CArrayPtrsToKeyword& Keywords() const noexcept { return keywords_; }
    // Set while its kind is asked to delete it.
    bool IsBeingRemoved() const noexcept { return beingRemoved_; }
    void SetBeingRemoved(bool on) noexcept { beingRemoved_ = on; }

    static int Compare(const KOR_CMObject& object, const char* name) noexcept;

    // ---- Storage. OAMERR_NOT_ENOUGH_MEMORY when the file's path does not fit.

    // OAMERR_NOT_FOUND without a file, OAMERR_FILE_READ_ERROR for a spoiled one; entries read
    // before a failure stay. Reads nothing when the object kept the keywords of a file that has not
    // changed since.
    oam_result Load() noexcept;
    // Keeps what was read of this object's data file, when that can be known again.
    void KeepFrom(DataFileImage* image) noexcept;
    KeptLink* Kept() noexcept { return &kept_; }
    // Gives up what a closed object keeps.
    void DropKept() noexcept;
    // OAMERR_FILE_WRITE_ERROR. The file is the old or the new one, whenever the machine stops.
    oam_result Save() noexcept;
    // This object's directory in an export that is open already.
    oam_result Save(CXmlExport& exporter) noexcept;
    // OAMERR_NOT_FOUND when there was none.
    oam_result RemoveFile() noexcept;
    bool HasFile() const noexcept;
    // From BeginCreation on the data file lies under a name that no start reads; EndCreation gives
    // it its own. So a creation that its process does not survive leaves no half-made object
    // behind. OAMERR_FILE_WRITE_ERROR.
    void BeginCreation() noexcept { beingCreated_ = true; }
    oam_result EndCreation() noexcept;
    bool IsBeingCreated() const noexcept { return beingCreated_; }

    // ---- Db layer: OAMERR_ACCESS_DENIED when the open state does not allow the call.

    oam_result DbOpen(unsigned long client, unsigned long* handle, unsigned mode) noexcept;
    // Closes in every case; the result is the save's. The last closing saves a read-write object,
    // unless it discards; `saving`: as far as that has not been done ahead.
    oam_result DbClose(unsigned long handle, bool discard, ObjectSaving* saving = nullptr) noexcept;
    oam_result DbGetProviderMode(bool* provider) noexcept;
    oam_result DbSetProviderMode(bool provider) noexcept;
    oam_result DbSetKeyword(const char* name, const char* value) noexcept;
    // Whether the entry is there with a value; one that could not be copied has none.
    bool HasValue(const char* keyword) const noexcept;
    oam_result DbGetKeyword(const char* name, char* buffer, unsigned size) noexcept;
    oam_result DbRemoveKeyword(const char* name) noexcept;
    oam_result DbSetQualifier(const char* keyword, const char* qualifier,
                              const char* value) noexcept;
    oam_result DbGetQualifier(const char* keyword, const char* qualifier, char* buffer,
                              unsigned size) noexcept;
    oam_result DbRemoveQualifier(const char* keyword, const char* qualifier) noexcept;

    // ---- Public layer.

    oam_result Open(unsigned long client, unsigned long* handle, unsigned mode) noexcept;
    oam_result SetKeyword(unsigned long handle, const char* name, const char* value) noexcept;
    oam_result GetKeyword(unsigned long handle, const char* name, char* buffer,
                          unsigned size) noexcept;
    oam_result SetQualifier(unsigned long handle, const char* keyword, const char* qualifier,
                            const char* value) noexcept;
    oam_result GetQualifier(unsigned long handle, const char* keyword, const char* qualifier,
                            char* buffer, unsigned size) noexcept;

  private:
    friend class ObjectSaving;

    bool IsOpen() const noexcept { return openCount_ > 0; }
    bool MayWrite() const noexcept { return IsOpen() && IsReadWrite(); }
    bool MayProvide() const noexcept { return MayWrite() && (openMode_ & OAM_OPEN_PROVIDER) != 0; }
    oam_result AskToOpen(unsigned long handle, unsigned mode) noexcept;
    struct DataFilePath;
    oam_result BuildPath(DataFilePath* path) const noexcept;
    bool IsUnchanged(const char* path) const noexcept;
    oam_result ReadFile(const char* path) noexcept;
    oam_result LoadKeyword(const char* name, const char* value) noexcept;
    oam_result WriteFile(DurableFile* file, bool sync) noexcept;

    oam::OwnedText name_;
    oam::OwnedText dataFileName_;
    CArrayPtrsToKeyword keywords_;
    int openCount_ = 0;
    unsigned openMode_ = OAM_OPEN_READ;
    bool beingCreated_ = false;
    bool beingRemoved_ = false;
    bool isComplete_ = false;
    // Of the file that holds just these keywords; unknown otherwise.
    oam::FileIdentity loadedFrom_;
    KeptLink kept_;
};

// The default of one of eight qualifiers, whatever the keyword; OAMERR_NOT_FOUND for any other.
oam_result getQualifierDefault(const char* qualifier, char* buffer, unsigned size) noexcept;
