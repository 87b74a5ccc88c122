#include "recovery/session/DiskWaits.h"

#include <chrono>
#include <mutex>

#include <sys/syscall.h>
#include <unistd.h>

namespace {

using Time = std::chrono::steady_clock;

class Waits
{
public:
    void begin()
    {
        const std::lock_guard lock(m_mutex);
        m_total -= Time::now().time_since_epoch();
        ++m_open;
    }
    void end()
    {
        const std::lock_guard lock(m_mutex);
        m_total += Time::now().time_since_epoch();
        --m_open;
    }
    Time::duration total()
    {
        const std::lock_guard lock(m_mutex);
        return m_total + m_open * Time::now().time_since_epoch();
    }

private:
    std::mutex m_mutex;
    Time::duration m_total{}; // what is open counts from its begin, as if it had ended at zero
    int m_open = 0;
};

Waits waits;

} // namespace

qint64 diskWaits()
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(waits.total()).count();
}

extern "C" int fsync(int file)
{
    waits.begin();
    const long result = syscall(SYS_fsync, file);
    waits.end();
    return int(result);
}
