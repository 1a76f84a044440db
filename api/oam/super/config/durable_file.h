// Replacing a file so that it is wholly the old or wholly the new one, whenever the process dies or
// the machine stops: written beside, synced, renamed over, the directory synced.
//
// A target that exists and is no regular file (a link, a device) is written in place, and so is one
// beside which its directory allows no file. What a death leaves beside ends in kBesideSuffix,
// which no reader takes for a data file; the start-up scan clears it.
#pragma once

#include <optional>
#include <utility>

#include "base/text.h"

constexpr char kBesideSuffix[] = ".saving";
// Ends the name of the data file of an object that is still being created; cleared likewise.
constexpr char kCreationSuffix[] = ".making";

// The directory that holds a path, opened before a name in it is changed: what could fail for want
// of descriptors fails before the change, and only the disk itself after it.
class ContainingDirectory {
  public:
    explicit ContainingDirectory(const char* path) noexcept;
    ~ContainingDirectory();
    ContainingDirectory(const ContainingDirectory&) = delete;
    ContainingDirectory& operator=(const ContainingDirectory&) = delete;

    bool IsOpen() const noexcept { return isOpen_; }
    // Makes the names in it durable. False on an I/O error, and when it is not open.
    bool Sync() const noexcept;

  private:
    int descriptor_ = -1;
    bool isOpen_ = false;
};

class DurableFile {
  public:
    DurableFile() noexcept = default;
    ~DurableFile() { CloseBeside(); }
    DurableFile(const DurableFile&) = delete;
    DurableFile& operator=(const DurableFile&) = delete;

    // Decides where to write and reserves the name beside. OAMERR_NOT_ENOUGH_MEMORY,
    // OAMERR_FILE_WRITE_ERROR: the old file is untouched.
    oam_result Begin(const char* path) noexcept;

    // The file to write; when it is beside, the writer syncs it.
    const char* Target() const noexcept { return beside_.IsNull() ? path_ : beside_.Get(); }
    bool IsBeside() const noexcept { return !beside_.IsNull(); }
    // The file beside, open and empty, for the writer, who closes it. Once; -1 when there is none.
    int TakeDescriptor() noexcept { return std::exchange(descriptor_, -1); }

    // Puts what was written in its place, or (when `written` is a failure) removes what is beside
    // and leaves the old file. Answers `written`, or OAMERR_FILE_WRITE_ERROR.
    oam_result Finish(oam_result written) noexcept;

    // Finish in steps, for who has more to do in between: OpenPlace ahead (without it, nothing is
    // made durable), PutInPlace, which answers as Finish does, and SyncPlace.
    void OpenPlace() noexcept { place_.emplace(path_); }
    oam_result PutInPlace(oam_result written) noexcept;
    // True also without a place to sync.
    bool SyncPlace() const noexcept { return !place_ || place_->Sync(); }
    // Removes what is still beside.
    void GiveUp() noexcept;

  private:
    void CloseBeside() noexcept;

    const char* path_ = "";
    oam::OwnedText beside_;
    int descriptor_ = -1;
    std::optional<ContainingDirectory> place_;
};

// Whether something that is no regular file lies at the path.
bool isWrittenInPlace(const char* path) noexcept;

// Puts a file in the place of another, or of none, for good. False: not done, or (after an I/O
// error) not known to be durable.
bool renameDurably(const char* from, const char* to) noexcept;

// Makes the file's data durable, and that it has this name. False on an I/O error.
bool syncFileAndName(const char* path) noexcept;
// Makes the names of the data files durable.
void syncDataDirectory() noexcept;
// Makes everything durable that was written to the file system of the directory.
bool syncAll(const char* directory) noexcept;
