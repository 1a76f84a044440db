#include "peer_files.h"

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <thread>

#include "korcore/lock_record.h"
#include "korcore/stream.h"
#include "oam/shadow.h"
#include "support/forked_child.h"

namespace oam::torture {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kComplete = 0x4B4A524E;  // the first word of a journal that is to be copied
constexpr std::chrono::seconds kPatience{30};

std::string directory() { return std::getenv("KOR_SHM_DIR"); }

void inAnotherProcess(const std::function<int()>& body) {
    test::ForkedChild child(body);
    if (!child.EndsWithin(kPatience) || !(child.IsDone() || child.WasKilled())) std::abort();
}

std::string content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// In place: others have it mapped.
void overwrite(const std::string& name, const void* bytes, std::size_t size) {
    const int file = open(SharedPath(name).c_str(), O_WRONLY | O_CLOEXEC);
    if (file < 0 || pwrite(file, bytes, size, 0) != static_cast<ssize_t>(size)) std::abort();
    close(file);
}

// Published and then put back to where the copying had not begun.
void leaveJournal(const std::function<void()>& publish) {
    const std::string before = content(SharedPath(kSegmentFile));
    publish();
    overwrite(kSegmentFile, before.data(), before.size());
    overwrite(kJournalFile, &kComplete, sizeof kComplete);
}

}  // namespace

std::string SharedPath(const std::string& name) { return directory() + '/' + name; }

std::vector<std::string> SharedFiles() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(directory()))
        names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

void RemoveSharedFiles() {
    for (const std::string& name : SharedFiles()) fs::remove_all(SharedPath(name));
}

void LeaveTable(Generation generation) {
    inAnotherProcess([generation] {
        if (oamShadowInit() != OAM_SUCCESS) return 1;
        return Publish(*oamShadowGetPtr(), generation) == OAM_SUCCESS ? 0 : 1;
    });
}

void LeaveJournal(Generation generation) {
    leaveJournal([generation] { LeaveTable(generation); });
}

void LeaveForeignJournal(const std::string& image) {
    leaveJournal([&image] {
        inAnotherProcess([&image] {
            CKorStreamSharedMemory stream(kSegmentFile, kShadowSize);
            return stream.Replace(image.data(), image.size()) ? 0 : 1;
        });
    });
}

void LeaveLockHeld() {
    inAnotherProcess([] {
        if (oamShadowInit() != OAM_SUCCESS || !oamShadowGetPtr()->Lock()) return 1;
        return kill(getpid(), SIGKILL);
    });
}

void LeaveLockSpoiled() {
    inAnotherProcess([] {
        const int file = open(SharedPath(kLockFile).c_str(), O_RDWR | O_CLOEXEC);
        void* data =
            mmap(nullptr, sizeof(KorLockRecord), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        if (data == MAP_FAILED) return 1;
        auto* record = static_cast<KorLockRecord*>(data);
        pthread_mutex_t* mutex = record->MutexOf(record->generation);
        std::thread([mutex] { pthread_mutex_lock(mutex); }).join();
        if (pthread_mutex_lock(mutex) != EOWNERDEAD) return 1;
        return pthread_mutex_unlock(mutex);
    });
}

}  // namespace oam::torture
