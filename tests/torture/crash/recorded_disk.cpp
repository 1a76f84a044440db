#include "recorded_disk.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/uio.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <set>
#include <utility>

namespace oam::torture {

namespace fs = std::filesystem;

namespace {

std::string bytesAt(pid_t process, unsigned long address, std::size_t size) {
    std::string bytes(size, '\0');
    const iovec here = {bytes.data(), size};
    const iovec there = {reinterpret_cast<void*>(address), size};
    const ssize_t got = process_vm_readv(process, &here, 1, &there, 1, 0);
    bytes.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
    return bytes;
}

// A page's rest at a time: what lies behind the text may not be mapped.
std::string textAt(pid_t process, unsigned long address) {
    constexpr unsigned long kPage = 4096;
    std::string text;
    while (text.size() < kPage) {
        const std::string part = bytesAt(process, address, kPage - address % kPage);
        if (part.empty()) return text;
        const std::size_t end = part.find('\0');
        text += part.substr(0, end);
        if (end != std::string::npos) return text;
        address += part.size();
    }
    return text;
}

}  // namespace

RecordedDisk::RecordedDisk(std::string directory) : directory_(std::move(directory)) {
    for (const auto& entry : fs::recursive_directory_iterator(directory_)) {
        if (!entry.is_regular_file()) continue;
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string data{std::istreambuf_iterator<char>(file),
                               std::istreambuf_iterator<char>()};
        names_[Below(entry.path())] = nextInode_;
        first_[nextInode_] = data;
        data_[nextInode_] = data;
        ++nextInode_;
    }
    firstNames_ = names_;
}

// Empty for what lies elsewhere; "." for the directory itself.
std::string RecordedDisk::Below(const std::string& path) const {
    const std::string normal = fs::path(path).lexically_normal();
    if (normal == directory_ || normal == directory_ + '/') return ".";
    if (!normal.starts_with(directory_ + '/')) return "";
    std::string below = normal.substr(directory_.size() + 1);
    if (below.ends_with('/')) below.pop_back();
    return below;
}

void RecordedDisk::Observe(const SystemCall& call, long result) {
    if (result < 0) return;
    const auto& arguments = call.arguments;
    const auto path = [&](std::size_t index) {
        return Below(textAt(call.thread, arguments[index]));
    };
    switch (call.number) {
        case SYS_openat:
            return Opened(path(1), static_cast<int>(arguments[2]), static_cast<int>(result));
        case SYS_open:
            return Opened(path(0), static_cast<int>(arguments[1]), static_cast<int>(result));
        case SYS_close:
            descriptors_.erase(static_cast<int>(arguments[0]));
            return;
        case SYS_write:
            return Written(call, result);
        case SYS_fsync:
            return Synced(static_cast<int>(arguments[0]));
        case SYS_syncfs:
            Add({Event::Kind::kSyncAll, ".", "", -1, ""});
            return;
        case SYS_rename:
            if (!path(0).empty()) Add({Event::Kind::kRename, path(0), path(1), -1, ""});
            return;
        case SYS_link:
            if (!path(0).empty()) Add({Event::Kind::kLink, path(0), path(1), -1, ""});
            return;
        case SYS_unlink:
        case SYS_rmdir:
            if (!path(0).empty()) Add({Event::Kind::kRemove, path(0), "", -1, ""});
            return;
        default:
            return;
    }
}

void RecordedDisk::Opened(const std::string& path, int flags, int descriptor) {
    if (path.empty()) return;
    if ((flags & O_DIRECTORY) != 0) {
        descriptors_[descriptor] = {path, -1};
        return;
    }
    if (names_.count(path) == 0) {
        if ((flags & O_CREAT) == 0) return;
        Add({Event::Kind::kCreate, path, "", nextInode_++, ""});
    }
    const int inode = names_.at(path);
    if ((flags & O_TRUNC) != 0 && !data_[inode].empty())
        Add({Event::Kind::kData, path, "", inode, ""});
    descriptors_[descriptor] = {path, inode};
}

// All of ours are written from the beginning to the end.
void RecordedDisk::Written(const SystemCall& call, long result) {
    const auto found = descriptors_.find(static_cast<int>(call.arguments[0]));
    if (found == descriptors_.end() || found->second.second < 0) return;
    const int inode = found->second.second;
    const auto written = bytesAt(call.thread, call.arguments[1], static_cast<std::size_t>(result));
    Add({Event::Kind::kData, found->second.first, "", inode, data_[inode] + written});
}

void RecordedDisk::Synced(int descriptor) {
    const auto found = descriptors_.find(descriptor);
    if (found == descriptors_.end()) return;
    const auto& [path, inode] = found->second;
    Add({inode < 0 ? Event::Kind::kSyncNames : Event::Kind::kSyncData, path, "", inode, ""});
}

void RecordedDisk::Add(Event event) {
    if (event.kind == Event::Kind::kData) data_[event.inode] = event.data;
    Apply(event, &names_);
    events_.push_back(std::move(event));
}

void RecordedDisk::Apply(const Event& event, Names* names) {
    switch (event.kind) {
        case Event::Kind::kCreate:
            (*names)[event.path] = event.inode;
            return;
        case Event::Kind::kRemove:
            names->erase(event.path);
            return;
        case Event::Kind::kLink:
            if (names->count(event.path) != 0) (*names)[event.target] = names->at(event.path);
            return;
        case Event::Kind::kRename: {
            Names moved;
            for (auto name = names->begin(); name != names->end();) {
                const bool isInside = name->first.starts_with(event.path + '/');
                if (name->first != event.path && !isInside) {
                    ++name;
                    continue;
                }
                moved[event.target + name->first.substr(event.path.size())] = name->second;
                name = names->erase(name);
            }
            for (const auto& [path, inode] : moved) (*names)[path] = inode;
            return;
        }
        case Event::Kind::kData:
        case Event::Kind::kSyncData:
        case Event::Kind::kSyncNames:
        case Event::Kind::kSyncAll:
            return;
    }
}

// The directory whose fsync makes a name change durable.
std::string RecordedDisk::PlaceOf(const Event& event) {
    const fs::path path = event.target.empty() ? event.path : event.target;
    return path.parent_path().empty() ? "." : path.parent_path().string();
}

// Goes through the events with what is synced and what is not.
class PossibleDisks {
  public:
    PossibleDisks(const RecordedDisk& disk, int atRandom)
        : atRandom_(atRandom), synced_(disk.firstNames_) {
        for (const auto& [inode, data] : disk.first_) Make(inode, data);
    }

    void Pass(const RecordedDisk::Event& event) {
        using Kind = RecordedDisk::Event::Kind;
        ++passed_;
        if (event.kind == Kind::kData) {
            Write(event.inode, event.data);
        } else if (event.kind == Kind::kSyncData) {
            inodes_[event.inode].Sync();
        } else if (event.kind == Kind::kSyncNames) {
            SyncNames(event.path);
        } else if (event.kind == Kind::kSyncAll) {
            for (auto& [inode, content] : inodes_) content.Sync();
            for (const auto& pending : std::exchange(pending_, {})) {
                RecordedDisk::Apply(pending, &synced_);
            }
        } else {
            if (event.kind == Kind::kCreate) Make(event.inode, "");
            pending_.push_back(event);
        }
        AddAll();
    }

    std::vector<RecordedDisk::State> Take() { return std::move(states_); }

  private:
    // How much of the data that is not synced is there.
    enum class Data { kWhole, kHalf, kOld };

    class Inode {
      public:
        void Write(Content whole, Content half) {
            whole_ = std::move(whole);
            half_ = std::move(half);
        }
        void Sync() { synced_ = whole_; }
        bool IsSynced() const { return whole_ == synced_; }
        Content Get(Data data) const {
            if (data == Data::kOld) return synced_;
            return data == Data::kWhole || IsSynced() ? whole_ : half_;
        }

      private:
        Content whole_, half_, synced_;
    };

    void Write(int inode, const std::string& data) {
        inodes_[inode].Write(Kept(data), Kept(data.substr(0, data.size() / 2)));
    }
    void Make(int inode, const std::string& data) {
        Write(inode, data);
        inodes_[inode].Sync();
    }

    // One for each content, so that equal ones are the same.
    Content Kept(const std::string& content) {
        Content& kept = contents_[content];
        if (kept == nullptr) kept = std::make_shared<const std::string>(content);
        return kept;
    }
    static constexpr std::size_t kMostForEverySubset = 8;

    void SyncNames(const std::string& directory) {
        std::vector<RecordedDisk::Event> left;
        for (const auto& event : pending_) {
            if (RecordedDisk::PlaceOf(event) == directory) {
                RecordedDisk::Apply(event, &synced_);
            } else {
                left.push_back(event);
            }
        }
        pending_ = std::move(left);
    }

    void AddAll() {
        AddSubsetsOfNames();
        for (const auto& [inode, content] : inodes_) {
            if (content.IsSynced()) continue;
            const std::string which = "all names, of inode " + std::to_string(inode);
            const auto all = [](std::size_t) { return true; };
            const auto is = [inode = inode](int other) { return other == inode; };
            Add(all, which + " half", [=](int i) { return is(i) ? Data::kHalf : Data::kWhole; });
            Add(all, which + " nothing", [=](int i) { return is(i) ? Data::kOld : Data::kWhole; });
            Add(all, which + " alone", [=](int i) { return is(i) ? Data::kWhole : Data::kOld; });
        }
    }

    void AddSubsetsOfNames() {
        const std::size_t count = pending_.size();
        if (count <= kMostForEverySubset) {
            for (std::size_t subset = 0; subset < std::size_t{1} << count; ++subset)
                AddSubset([=](std::size_t i) { return (subset >> i & 1) != 0; });
            return;
        }
        AddSubset([](std::size_t) { return true; });
        for (std::size_t chosen = 0; chosen < count; ++chosen) {
            AddSubset([=](std::size_t i) { return i != chosen; });
            AddSubset([=](std::size_t i) { return i < chosen; });
            AddSubset([=](std::size_t i) { return i == chosen; });
        }
        for (int i = 0; i < atRandom_; ++i) {
            std::vector<bool> isThere(count);
            for (std::size_t k = 0; k < count; ++k) isThere[k] = (random_() & 1) != 0;
            AddSubset([&](std::size_t k) { return isThere[k]; });
        }
    }

    template <class Chosen>
    void AddSubset(const Chosen& chosen) {
        std::string which = "names ";
        for (std::size_t i = 0; i < pending_.size(); ++i) which += chosen(i) ? '1' : '0';
        Add(chosen, which + ", data whole", [](int) { return Data::kWhole; });
        Add(chosen, which + ", data by half", [](int) { return Data::kHalf; });
        Add(chosen, which + ", data as synced", [](int) { return Data::kOld; });
    }

    template <class Chosen, class Kept>
    void Add(const Chosen& chosen, std::string what, const Kept& kept) {
        auto names = synced_;
        for (std::size_t i = 0; i < pending_.size(); ++i)
            if (chosen(i)) RecordedDisk::Apply(pending_[i], &names);
        Files files;
        for (const auto& [path, inode] : names) {
            files.emplace_hint(files.end(), path, inodes_.at(inode).Get(kept(inode)));
        }
        const auto disk = std::make_shared<const Files>(std::move(files));
        if (seen_.insert(disk).second) states_.push_back({passed_, std::move(what), disk});
    }

    const int atRandom_;
    RecordedDisk::Names synced_;
    std::map<std::string, Content> contents_;
    std::map<int, Inode> inodes_;
    std::vector<RecordedDisk::Event> pending_;
    std::size_t passed_ = 0;
    std::minstd_rand random_{1};  // the same disks in every run
    struct ByFiles {
        bool operator()(const std::shared_ptr<const Files>& one,
                        const std::shared_ptr<const Files>& other) const {
            return *one < *other;
        }
    };
    std::set<std::shared_ptr<const Files>, ByFiles> seen_;
    std::vector<RecordedDisk::State> states_;
};

std::vector<RecordedDisk::State> RecordedDisk::States(int atRandom) const {
    PossibleDisks disks(*this, atRandom);
    for (const Event& event : events_) disks.Pass(event);
    return disks.Take();
}

}  // namespace oam::torture
