/* core/src/SyncEvent.cpp, manual-reset and auto-reset: two setters, three waiters, one of which may be killed, and a thread
 * that destroys the event as soon as the waiters have left, while a setter may still be in its wake call.
 *
 * What holds: when nothing more can happen, no live thread sleeps while the event is set (unless the event is auto-reset
 * and a thread was killed between its wake-up and its check); nothing is used after it was freed.
 */
#define TOUCH assert(!freed)
#define WAITERS 3
#define DOOMED 2

bool isSet = false;
bool manual = false;
bool freed = false;
bool asleep[WAITERS];
bool left[WAITERS];
bool dead = false;
byte sets = 0;

proctype Waiter(byte me) {
    bool released;
    {
        do
        :: d_step {  /* Wait: load, or compare_exchange_strong */
                TOUCH;
                released = isSet;
#ifdef BUG_STAYS_SET
                skip
#else
                isSet = isSet && manual
#endif
            }
            if
            :: released -> break
            :: else
            fi;
            atomic {  /* WaitOnAddress: sleeps only while it is reset */
                TOUCH;
                if
#ifdef BUG_SLEEPS_WITHOUT_A_LOOK
                :: true -> asleep[me] = true
#else
                :: !isSet -> asleep[me] = true
                :: else
#endif
                fi
            }
            !asleep[me]
        od;
        left[me] = true
    } unless {
        me == DOOMED && dead
    }
}

proctype Killer() {
    atomic {
        !left[DOOMED] -> dead = true; asleep[DOOMED] = false
    }
}

inline Wake(all) {
    atomic {
        if
        :: all -> asleep[0] = false; asleep[1] = false; asleep[2] = false
        :: !all && asleep[0] -> asleep[0] = false
        :: !all && asleep[1] -> asleep[1] = false
        :: !all && asleep[2] -> asleep[2] = false
        :: else
        fi
    }
}

proctype Setter() {
    bool all;
    d_step { TOUCH; all = manual }  /* Set: m_manualReset, before the exchange */
#ifdef BUG_WAKES_FIRST
    Wake(all);
#endif
    d_step { TOUCH; isSet = true; sets++ }  /* exchange */
#ifdef BUG_KIND_READ_LAST
    d_step { TOUCH; all = manual }
#endif
#ifdef BUG_NO_WAKE
    skip
#elif !defined BUG_WAKES_FIRST
    Wake(all)  /* by address only */
#endif
}

proctype Destroyer() {
    atomic {
        sets == 2 && left[0] && left[1] && (left[2] || dead) -> freed = true
    }
}

init {
    atomic {
        if :: manual = true :: true fi;
        if :: run Killer() :: true fi;
        run Waiter(0); run Waiter(1); run Waiter(2);
        run Setter(); run Setter();
        run Destroyer()
    }
    timeout;
    if
    :: manual -> assert(left[0] && left[1] && (left[2] || dead) && freed)
    :: !manual && !dead -> assert(!isSet || !(asleep[0] || asleep[1] || asleep[2]))
    :: else
    fi;
    assert(manual || left[0] + left[1] + left[2] <= 2)
}
