#include "rycore/io/RyWaiting.h"

#include <chrono>
#include <future>

namespace {

constexpr std::chrono::milliseconds Beat(20);
constexpr double Step = 0.15; // of what is left: nobody knows how much there is to do

} // namespace

void RyWaiting::run(const std::function<void()> &work)
{
    if (!m_progress) {
        work();
        return;
    }
    tell();
    std::future<void> done = std::async(std::launch::async, work);
    while (done.wait_for(Beat) != std::future_status::ready)
        m_isWanted = m_progress(m_done) && m_isWanted;
    done.get();
    tell();
}

void RyWaiting::tell()
{
    if (!m_progress)
        return;
    m_done += Step * (1.0 - m_done);
    m_isWanted = m_progress(m_done) && m_isWanted;
}
