#include "backplane/BackplaneSegment.h"

#include <cerrno>
#include <system_error>
#include <type_traits>

#include <sys/ipc.h>
#include <sys/shm.h>

#include "common/CommandLine.h"
#include "customer/phy_otnCommon.h"

namespace brantel {
namespace {

using phy_otnCommon::BACKPLANE_INFO_ACCESS;
using phy_otnCommon::BACKPLANE_INFO_KEY;
using phy_otnCommon::BACKPLANE_INFO_SIZE;
using phy_otnCommon::BackplaneInfo;

// An attached segment; detached with the object.
class Attachment {
public:
    explicit Attachment(int id) : m_pSegment(::shmat(id, nullptr, 0)) {}
    ~Attachment()
    {
        if (succeeded()) {
            ::shmdt(m_pSegment);
        }
    }
    Attachment(const Attachment&) = delete;
    Attachment& operator=(const Attachment&) = delete;

    bool succeeded() const { return m_pSegment != reinterpret_cast<void*>(std::intptr_t{-1}); }
    BackplaneInfo& info() const { return *static_cast<BackplaneInfo*>(m_pSegment); }

private:
    void* m_pSegment;
};

int findSegment()
{
    return ::shmget(BACKPLANE_INFO_KEY, BACKPLANE_INFO_SIZE, BACKPLANE_INFO_ACCESS);
}

bool isTooSmall()
{
    shmid_ds status{};
    const int id = ::shmget(BACKPLANE_INFO_KEY, 0, 0);
    return (id >= 0) && (::shmctl(id, IPC_STAT, &status) == 0) && (status.shm_segsz < BACKPLANE_INFO_SIZE);
}

// Why the last call failed on the segment.
std::string reasonAgainstSegment()
{
    const int error = errno;
    if ((error == EINVAL) && isTooSmall()) {
        return "it is smaller than " + std::to_string(BACKPLANE_INFO_SIZE) +
               " bytes; 'brantel backplane clear' removes it";
    }
    return std::generic_category().message(error);
}

CommandError segmentError(const std::string& what)
{
    return CommandError("cannot " + what + " the segment with key " + std::to_string(BACKPLANE_INFO_KEY) + ": " +
                        reasonAgainstSegment());
}

BackplaneSegment unusable()
{
    BackplaneSegment segment;
    segment.state = BackplaneSegment::State::UNUSABLE;
    segment.reason = reasonAgainstSegment();
    return segment;
}

}  // namespace

std::optional<std::uint32_t> BackplaneSegment::type() const
{
    return (state == State::VALID) ? std::optional(words[1]) : std::nullopt;
}

BackplaneSegment readBackplaneSegment()
{
    BackplaneSegment segment;
    const int id = findSegment();
    if (id < 0) {
        return (errno == ENOENT) ? segment : unusable();
    }
    shmid_ds status{};
    if (::shmctl(id, IPC_STAT, &status) == 0) {
        segment.nAttached = status.shm_nattch;
    }
    const Attachment attachment(id);
    if (!attachment.succeeded()) {
        return unusable();
    }
    const BackplaneInfo& info = attachment.info();
    segment.words[0] = __atomic_load_n(&info.valid, __ATOMIC_ACQUIRE);
    segment.words[1] = __atomic_load_n(&info.backplaneType, __ATOMIC_RELAXED);
    segment.words[2] = __atomic_load_n(&info.reserved, __ATOMIC_RELAXED);
    if (segment.words[0] == 0) {
        segment.state = BackplaneSegment::State::NOT_YET_VALID;
    } else if (segment.words[1] >= phy_otnCommon::N_BACKPLANE_TYPES) {
        segment.state = BackplaneSegment::State::UNKNOWN_TYPE;
    } else {
        segment.state = BackplaneSegment::State::VALID;
    }
    return segment;
}

std::string segmentText(const BackplaneSegment& segment)
{
    switch (segment.state) {
        case BackplaneSegment::State::NONE: return "there is no segment";
        case BackplaneSegment::State::UNUSABLE: return "the segment is unusable: " + segment.reason;
        case BackplaneSegment::State::NOT_YET_VALID: return "the segment is not yet valid";
        case BackplaneSegment::State::UNKNOWN_TYPE:
            return "the segment names the unknown type " + std::to_string(segment.words[1]);
        case BackplaneSegment::State::VALID: break;
    }
    return "the segment names type " + std::to_string(segment.words[1]);
}

void publishBackplaneType(std::uint32_t type)
{
    const int id = ::shmget(BACKPLANE_INFO_KEY, BACKPLANE_INFO_SIZE, IPC_CREAT | BACKPLANE_INFO_ACCESS);
    if (id < 0) {
        throw segmentError("create");
    }
    const Attachment attachment(id);
    if (!attachment.succeeded()) {
        throw segmentError("attach");
    }
    BackplaneInfo& info = attachment.info();
    // A reader sees the old type, none, or the new one, never a segment that is marked as valid in mid-change.
    __atomic_store_n(&info.valid, 0U, __ATOMIC_SEQ_CST);
    __atomic_store_n(&info.backplaneType, type, __ATOMIC_SEQ_CST);
    __atomic_store_n(&info.valid, 1U, __ATOMIC_RELEASE);
}

bool removeBackplaneSegment()
{
    // Of any size: an unusable segment is removed too.
    const int id = ::shmget(BACKPLANE_INFO_KEY, 0, 0);
    if (id < 0) {
        if (errno == ENOENT) {
            return false;
        }
        throw segmentError("find");
    }
    if (::shmctl(id, IPC_RMID, nullptr) != 0) {
        throw segmentError("remove");
    }
    return true;
}

}  // namespace brantel
