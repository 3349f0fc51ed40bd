/* core/src/Mutex.cpp: three threads that lock and unlock, one of which may be killed, and a thread that destroys the mutex
 * as soon as the last one has unlocked it, while that one may still be in its wake call.
 *
 * What holds: there is one owner at a time, and only it clears the owner's id; no thread sleeps forever, unless one was
 * killed as the owner or between its wake-up and its lock; nothing is used after it was freed.
 */
#define TOUCH assert(!freed)
#define THREADS 3
#define DOOMED 2
#define NOBODY 255

byte state = 0;
byte owner = NOBODY;
bool freed = false;
bool asleep[THREADS];
bool left[THREADS];
bool dead = false;
byte inside = 0;

proctype Locker(byte me) {
    byte before;
    {
        d_step {  /* Lock: compare_exchange_strong */
            TOUCH;
            before = state;
            if
            :: state == 0 -> state = 1
            :: else
            fi
        }
        do
        :: before == 0 -> break
        :: else ->
            d_step {  /* exchange(2) */
                TOUCH;
                before = state;
#ifdef BUG_TAKES_AS_IF_ALONE
                if
                :: state == 0 -> state = 1
                :: else -> state = 2
                fi
#else
                state = 2
#endif
            }
            if
            :: before == 0 -> break
            :: else
            fi;
            atomic {  /* WaitOnAddress: sleeps only while it is 2 */
                TOUCH;
                if
#ifdef BUG_SLEEPS_WITHOUT_A_LOOK
                :: true -> asleep[me] = true
#else
                :: state == 2 -> asleep[me] = true
                :: else
#endif
                fi
            }
            !asleep[me]
        od;
        inside++;
        assert(inside == 1);
        d_step { TOUCH; owner = me }
        assert(owner == me);  /* Unlock */
        inside--;
#ifndef BUG_OWNER_CLEARED_LAST
        d_step { TOUCH; owner = NOBODY }
#endif
        d_step { TOUCH; before = state; state = 0; left[me] = true }  /* exchange(0) */
#ifdef BUG_OWNER_CLEARED_LAST
        d_step { TOUCH; owner = NOBODY }
#endif
#ifndef BUG_NO_WAKE
        if
        :: before == 2 ->  /* by address only */
            atomic {
                if
                :: asleep[0] -> asleep[0] = false
                :: asleep[1] -> asleep[1] = false
                :: asleep[2] -> asleep[2] = false
                :: else
                fi
            }
        :: else
        fi
#endif
    } unless {
        me == DOOMED && dead
    }
}

proctype Killer() {
    atomic {
        !left[DOOMED] -> dead = true; asleep[DOOMED] = false
    }
}

proctype Destroyer() {
    atomic {
        left[0] && left[1] && (left[2] || dead) -> freed = true
    }
}

init {
    atomic {
        if :: run Killer() :: true fi;
        run Locker(0); run Locker(1); run Locker(2);
        run Destroyer()
    }
    timeout;
    assert(dead || (left[0] && left[1] && left[2] && freed))
}
