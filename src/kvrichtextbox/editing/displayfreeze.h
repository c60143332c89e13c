#pragma once

#include "core/controlcore.h"
#include "core/threadstate.h"

namespace kvrtb {

/// \brief Holds the control's display lock (`LockWindowUpdateEx`) for the guard's lifetime.
///
/// The lock is released on every path out of a pass, including early returns. `release` ends
/// it early, at the point where a pass thaws the display before its last steps.
class DisplayFreeze {
public:
    explicit DisplayFreeze(ControlCore &core) : m_core(core) { m_core.lockWindowUpdate(true); }
    ~DisplayFreeze() { release(); }
    DisplayFreeze(const DisplayFreeze &) = delete;
    DisplayFreeze &operator=(const DisplayFreeze &) = delete;

    void release()
    {
        if (m_held) {
            m_held = false;
            m_core.lockWindowUpdate(false);
        }
    }

private:
    ControlCore &m_core;
    bool m_held = true;
};

/// \brief Raises one of the per-thread "in progress" flags for the guard's lifetime.
class ThreadFlagGuard {
public:
    explicit ThreadFlagGuard(bool &flag) : m_flag(flag) { m_flag = true; }
    ~ThreadFlagGuard() { release(); }
    ThreadFlagGuard(const ThreadFlagGuard &) = delete;
    ThreadFlagGuard &operator=(const ThreadFlagGuard &) = delete;

    void release()
    {
        if (m_held) {
            m_held = false;
            m_flag = false;
        }
    }

private:
    bool &m_flag;
    bool m_held = true;
};

} // namespace kvrtb
