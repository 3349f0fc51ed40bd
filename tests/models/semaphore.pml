/* core/src/Semaphore.cpp: two waiters, one of which may be killed anywhere; two posters; one destroyer.
 *
 * Each step is one operation on one atomic, in sequentially consistent order. The memory orders are justified beside the
 * atomics and tested with the thread sanitizer. In every order of the steps:
 * - no wake-up is lost: when nothing more can happen, no live thread sleeps while the count is above 0 (unless a thread
 *   was killed between its wake-up and its take);
 * - no thread sleeps once the destructor has begun, and the destructor ends: woken by the last waiter, or after 200 ms if a
 *   waiter was killed or is slow;
 * - the state is freed once and not used afterwards;
 * - the count never exceeds the maximum; each sleeper is registered once.
 * The definitions BUG_* plant bugs, which scripts/models expects the checker to find.
 */
#define COUNT(c) ((c) & 7)  /* counts: low half */
#define CLOSING 8           /* kClosing, in counts and in references */
#define LOW(c) ((c) & 15)
#define SLEEPER 16          /* kOneSleeper */
#define SLEEPERS(c) ((c) / SLEEPER)
#define CAN_TAKE(c) (COUNT(c) != 0 && ((c) & CLOSING) == 0)
#define TOUCH assert(!freed)

#define WAITERS 2
#define DOOMED 1  /* the waiter that may be killed */

byte maximum = 1;
int counts = 0;
int references = 1;
bool freed = false;

bool asleep[WAITERS];
bool holds[WAITERS];  /* has begun and holds its reference */
bool left[WAITERS];
bool dead = false;
byte posted = 0;  /* posters that have finished with the state */
bool destroys = false;
bool slow = false;  /* a waiter takes longer than the destructor waits */
bool destroyerSleeps = false;
bool destroyed = false;

inline WakeAll() {
    d_step { asleep[0] = false; asleep[1] = false }
}

inline WakeSingle() {
    atomic {
        if
        :: asleep[0] -> asleep[0] = false
        :: asleep[1] -> asleep[1] = false
        :: else
        fi
    }
}

inline Free() {
    TOUCH;
    freed = true
}

/* Release */
inline Release(before) {
    d_step { TOUCH; before = references; references = references - 1 }
    if
#ifdef BUG_FREES_WHILE_HELD
    :: (before & CLOSING) != 0 && !freed -> Free()
#else
    :: before == (CLOSING | 1) -> Free()
#endif
#ifndef BUG_TELLS_NOBODY
    :: before == (CLOSING | 2) -> destroyerSleeps = false  /* by address only */
#endif
    :: else
    fi
}

/* A compare-exchange that fails is retried with the value it found, so such a loop is one step on the current value. */
#define NOTHING 0
#define SOME 1
#define END 2
#define GOT 3
#define LOOK(c) (((c) & CLOSING) != 0 -> END : (COUNT(c) != 0 -> SOME : NOTHING))

proctype Waiter(byte me) {
    byte seen;
    int before;
    {
        if
        :: d_step { CAN_TAKE(counts) -> counts = counts - 1 } goto gone  /* Wait: TryTakeFrom */
        :: d_step { !CAN_TAKE(counts) ->  /* WaitSlowly: references.fetch_add */
#ifndef BUG_NO_REFERENCE
            references = references + 1;
#endif
            holds[me] = true }
        fi;
#ifdef BUG_REGISTERS_LATE
        d_step { TOUCH; seen = LOOK(counts) };
#else
        d_step { TOUCH; counts = counts + SLEEPER; seen = LOOK(counts) };  /* SpinThenSleep: counts.fetch_add */
#endif
        do
        :: seen == SOME ->  /* compare_exchange_weak */
            d_step {
                TOUCH;
                if
#if defined BUG_STAYS_REGISTERED || defined BUG_REGISTERS_LATE
                :: CAN_TAKE(counts) -> counts = counts - 1; seen = GOT
#else
                :: CAN_TAKE(counts) -> counts = counts - SLEEPER - 1; seen = GOT
#endif
                :: else -> seen = LOOK(counts)
                fi
            }
        :: seen == NOTHING ->
#ifdef BUG_REGISTERS_LATE
            d_step { TOUCH; counts = counts + SLEEPER; asleep[me] = true };
#else
            d_step {  /* WaitOnAddress: sleeps only while the low half is 0 */
                TOUCH;
                if
                :: LOW(counts) == 0 -> asleep[me] = true
                :: else
                fi
            };
#endif
            d_step { !asleep[me] -> TOUCH; seen = LOOK(counts) }  /* counts.load */
            if
            :: seen == SOME -> TOUCH  /* posted.load */
            :: else
            fi
        :: seen == END || seen == GOT -> break
        od;
#ifndef BUG_NO_REFERENCE
        Release(before);
#endif
gone:
        skip;
        d_step { left[me] = true; seen = 0; before = 0 }  /* what was read no longer matters */
    } unless {
        me == DOOMED && dead
    }
}

proctype Killer() {
    atomic {
        !left[DOOMED] -> dead = true; asleep[DOOMED] = false
    }
}

#define FITS (COUNT(counts) + 1 <= maximum)

proctype Poster() {
    byte sleepers;
#ifdef BUG_SLEEPERS_READ_FIRST
    d_step { TOUCH; sleepers = SLEEPERS(counts) };
#endif
#ifdef BUG_MAXIMUM_CHECKED_APART
    FITS;
#endif
#ifndef BUG_TAKES_THE_TIME_LAST
    TOUCH;  /* Post: posted.store */
#endif
    d_step {  /* compare_exchange_weak */
        TOUCH;
        posted++;
        if
#ifdef BUG_MAXIMUM_CHECKED_APART
        :: true ->
#else
        :: FITS ->
#endif
            counts = counts + 1;
            assert(COUNT(counts) <= maximum);
#ifndef BUG_SLEEPERS_READ_FIRST
            sleepers = SLEEPERS(counts)
#endif
        :: else
        fi
    };
#ifdef BUG_TAKES_THE_TIME_LAST
    if
    :: sleepers != 0 -> TOUCH
    :: else
    fi;
#endif
#ifndef BUG_NO_WAKE
    if  /* by address only */
    :: sleepers == 0
    :: sleepers == 1 -> WakeAll()
    :: sleepers > 1 -> WakeSingle()
    fi;
#endif
    sleepers = 0
}

/* No thread may begin an operation any more; those in Wait hold their references. */
#define BEGUN(i) (holds[i] || left[i] || (i == DOOMED && dead))

proctype Destroyer() {
    int r;
    atomic {
        destroys && posted == 2 && BEGUN(0) && BEGUN(1) ->  /* ~Semaphore: references.fetch_or */
        references = references | CLOSING;
        r = references
    }
    if
    :: r != (CLOSING | 1) ->
        d_step { TOUCH; counts = counts | CLOSING }
#ifndef BUG_CLOSES_WITHOUT_WAKE
        WakeAll();
#endif
        do
        :: d_step { TOUCH; r = references }
            if
            :: r == (CLOSING | 1) -> break
            :: else
            fi;
            atomic {  /* WaitOnAddress, with a limit */
                if
                :: references == r -> destroyerSleeps = true
                :: else
                fi
            }
            if
            :: !destroyerSleeps
#ifndef BUG_NO_LIMIT
            :: destroyerSleeps && (dead || slow) -> destroyerSleeps = false; break
#endif
            fi
        od
    :: else
    fi;
    Release(r);
    d_step { destroyed = true; r = 0 }
}

init {
    atomic {
        if :: maximum = 2 :: true fi;
        if :: destroys = true :: true fi;
        if :: slow = true :: true fi;
        if :: run Killer() :: true fi;
        run Waiter(0); run Waiter(1);
        run Poster(); run Poster();
        run Destroyer()
    }
    timeout;  /* nothing can happen any more */
    assert(destroyed == destroys);
    if
    :: destroys -> assert(left[0] && (left[1] || dead) && (freed || dead))
    :: !destroys && !dead ->
        assert(COUNT(counts) == 0 || !(asleep[0] || asleep[1]));
        assert(SLEEPERS(counts) == asleep[0] + asleep[1])
    :: else
    fi
}
