/* The start-up protocol of one workspace: which launcher becomes the platform.
 *
 * Three launchers start at any time beside each other, and a fourth when these are through. A step is
 * printed with a name that says what it does; between two steps World may do whatever
 * others can do. check-protocol goes through every order of steps.
 *
 * What must hold, whatever happens:
 *   - at most one process believes that it is the workspace's main one      believeToBeMain
 *   - who becomes a daemon finds a main platform that is up                 believeToBeDaemon
 *   - nobody waits for ever: the only ends are those marked "end", and nothing goes round in circles
 *   - the fourth launch succeeds: nobody disturbs it, so its only end is to become one of the three
 *
 * What is left open has a name (mtype:excuse) and its story in docs/security.md; -DUNEXCUSED=NAME
 * shows it. Every fault that -DWITHOUT_... plants must be found.
 *
 * Processes have numbers here that are never used again. A recorded process id can be: whoever looks
 * at one that has ended may find somebody else under it.
 */
#define LAUNCHERS 4
#define LATER 4             /* starts when the others are through; nobody disturbs it */
#define LONGEST_WAIT 2      /* kLongestWaitSeconds; two rounds are like twenty */

#define NOBODY 0
#define RECORDER(launcher) (launcher + LAUNCHERS)   /* the process that it forks */
#define STALE 9             /* whoever has ended */

/* --- What is left open --- */
mtype:excuse = {
    NONE,
    GIVEN_UP,               /* a restart has waited for its end long enough */
    FORK_FAILED,            /* so nobody records its id */
    RECORDER_DIED,          /* before the id was recorded, or before the platform was up */
    WORKSPACE_REMOVED,      /* by its user, lock file and all */
    ID_REUSED,              /* the recorded id is somebody else's by now */
    PROVISIONING_UNRECORDED, /* ".rcp.provisioning" could not be written */
    PROVISIONING_ENDED      /* before the recorder did, whose id is recorded then */
};
#ifndef UNEXCUSED
#define UNEXCUSED NONE
#endif

/* --- Launchers --- */
mtype:stage = { UNBORN, LAUNCHING, HOLDING, MAIN, DAEMON, PROVISIONING, GONE };
mtype:stage stage[LAUNCHERS + 1] = UNBORN;
bool isExcused[LAUNCHERS + 1];      /* from being the only main one */
bool isUp[LAUNCHERS + 1];           /* it is what it became, and no launcher any more */
bool hasRecorder[LAUNCHERS + 1];    /* the forked process is alive */
bool mustRecord[LAUNCHERS + 1];     /* ... and will record its parent's id */
bool hasOpened[LAUNCHERS + 1];      /* the gate, before it becomes the provisioning program */
byte old[LAUNCHERS + 1];            /* "-rcp_old_pid" of a restart */
bool isCalm;                        /* nothing happens any more but what launchers do */

/* --- Files --- */
#define NO_FILE 2
byte named = 0;             /* what is called ".rcp.lock": whoever has a removed file open keeps it */
byte recorded[2];           /* the process whose id it holds */
byte lockedBy[2];           /* the launcher whose open file has the lock; its recorder shares that */
byte removals;              /* so far; there is one at most */
byte marker;                /* whom ".rcp.provisioning" names; with the start time, never another */
byte file[LAUNCHERS + 1];   /* what the launcher has open */
bool isOpen[LAUNCHERS + 1]; /* in the launcher; the recorder has it as long as it is there */
byte each;                  /* counts within a step */

#define isLauncher(process) (process != NOBODY && process <= LAUNCHERS)
#define isRecorder(process) (process > LAUNCHERS && process <= 2 * LAUNCHERS)
#define isAlive(process) \
    ((isLauncher(process) && stage[process] != UNBORN && stage[process] != GONE) || \
     (isRecorder(process) && hasRecorder[process - LAUNCHERS]))

inline excuseFor(launcher, reason) {
    if
    :: reason != UNEXCUSED -> isExcused[launcher] = true
    :: else
    fi
}

inline releaseLock(launcher) {
    if
    :: isOpen[launcher] || hasRecorder[launcher] ->
        if
        :: lockedBy[file[launcher]] == launcher -> lockedBy[file[launcher]] = NOBODY
        :: else
        fi
    :: else
    fi
}

/* A lock goes with the last descriptor of its open file. */
inline closeFile(launcher) {
    if
    :: !hasRecorder[launcher] -> releaseLock(launcher); file[launcher] = 0
    :: else
    fi;
    isOpen[launcher] = false
}

inline forget(process) {
    each = 0;
    do
    :: each < 2 -> recorded[each] = (recorded[each] == process -> STALE : recorded[each]); each++
    :: else -> break
    od;
    each = 1;
    do
    :: each <= LAUNCHERS -> old[each] = (old[each] == process -> STALE : old[each]); each++
    :: else -> break
    od;
    each = 0;
    marker = (marker == process -> NOBODY : marker)
}

inline endLauncher(launcher) {
    d_step {
        closeFile(launcher);
        stage[launcher] = GONE;
        isUp[launcher] = false;
        isExcused[launcher] = false;
        old[launcher] = NOBODY;
        forget(launcher)
    }
}

inline endRecorder(launcher) {
    d_step {
        if
        :: !isOpen[launcher] -> releaseLock(launcher); file[launcher] = 0
        :: else
        fi;
        hasRecorder[launcher] = false;
        hasOpened[launcher] = false;
        mustRecord[launcher] = false;
        forget(RECORDER(launcher))
    }
}

/* --- What must hold --- */
#define isUnexcusedMain(launcher) \
    ((stage[launcher] == MAIN || stage[launcher] == PROVISIONING) && !isExcused[launcher])

inline believeToBeMain() {
    printf("%d believes to be main\n", me);
    stage[me] = MAIN;
    old[me] = NOBODY;
    assert(isUnexcusedMain(1) + isUnexcusedMain(2) + isUnexcusedMain(3) + isUnexcusedMain(4) <= 1)
}

inline believeToBeDaemon(platform) {
    stage[me] = DAEMON;
    old[me] = NOBODY;
    isExcused[me] = false;
    printf("%d believes to be a daemon of %d\n", me, platform);
    if
    :: isLauncher(platform) && stage[platform] == MAIN && isUp[platform]
    :: platform == STALE -> assert(UNEXCUSED != ID_REUSED)
    :: isRecorder(platform) -> assert(UNEXCUSED != PROVISIONING_ENDED)
    :: isLauncher(platform) && !isUp[platform] ->
        assert(!hasRecorder[platform] && UNEXCUSED != RECORDER_DIED)
    fi
}

/* --- The launcher ---
 * One step is one "if" in an atomic: what the function does, or that the process is killed in front
 * of it. */
#define STEP(text) printf(text, me)
#define OR_DIES :: !isCalm -> STEP("%d is killed\n"); endLauncher(me); goto gone

inline createAndOpenLockFile() {
    STEP("%d createAndOpenLockFile\n");
    closeFile(me);
    named = (named == NO_FILE -> removals : named);
    file[me] = named;
    isOpen[me] = true
}

#ifdef WITHOUT_LOCK
#define isLockFree true
#else
#define isLockFree (lockedBy[file[me]] == NOBODY || lockedBy[file[me]] == me)
#endif
#ifdef WITHOUT_COMPARISON
#define isLedTo true
#else
#define isLedTo (named == file[me])
#endif

inline takeLock() {
    do
    :: atomic {
        if
        :: isLockFree -> STEP("%d lockExclusively\n"); lockedBy[file[me]] = me
        OR_DIES
        fi
       }
       atomic {
        if
        :: isLedTo -> STEP("%d isLedTo\n"); stage[me] = HOLDING; isExcused[me] = false; break
        :: !isLedTo -> STEP("%d isLedTo: no\n"); createAndOpenLockFile()
        OR_DIES
        fi
       }
    od
}

/* What the lock file says. Alive and running a launcher's or the platform's program counts. */
#define content (named == NO_FILE -> NOBODY : recorded[file[me]])

/* Under the lock, so that the id of a new platform is not cleared. */
#ifdef WITHOUT_SECOND_LOOK
#define isOldRecorded true
#else
#define isOldRecorded (recorded[file[me]] == old[me])
#endif

inline giveOldPlatformUp() {
    takeLock();
    atomic {
        if
        :: isOldRecorded ->
            STEP("%d invalidateLockFile\n");
            if
            :: isLauncher(old[me]) && recorded[file[me]] == old[me] -> excuseFor(old[me], GIVEN_UP)
            :: else
            fi;
            recorded[file[me]] = NOBODY
        :: old[me] == STALE && isLauncher(recorded[file[me]]) ->
            STEP("%d invalidateLockFile: the id is another one's\n");
            excuseFor(recorded[file[me]], ID_REUSED);
            recorded[file[me]] = NOBODY
        :: !isOldRecorded -> STEP("%d giveOldPlatformUp: nothing to clear\n")
        OR_DIES
        fi
    }
}

inline waitForOldPlatform() {
    do
    :: atomic {
        if
        :: content == old[me] || (old[me] == STALE && isAlive(content)) ->
            if
            :: old[me] != STALE -> STEP("%d isMainProcessRunning\n")
            :: else -> STEP("%d isMainProcessRunning: somebody else\n")
            fi;
            waited++;
            if
            :: waited > LONGEST_WAIT -> waited = 0; goto give_up
            :: else
            fi
        :: content != old[me] || old[me] == STALE ->
            STEP("%d isMainProcessRunning: no\n");
            waited = 0;
            goto lock
        OR_DIES
        fi
       }
    od;
give_up:
    giveOldPlatformUp()
}

inline lockLockFile() {
    takeLock();
    atomic {
        if
        :: isAlive(marker) -> STEP("%d runningProvisioning\n"); goto wait
        :: !isAlive(marker) && isAlive(content) ->
            STEP("%d isMainProcessRunning\n");
            believeToBeDaemon(content)
        :: !isAlive(marker) && content == STALE ->
            STEP("%d isMainProcessRunning: somebody else\n");
            believeToBeDaemon(STALE)
        :: !isAlive(marker) && !isAlive(content) ->
            STEP("%d isMainProcessRunning: no\n");
            believeToBeMain()
        OR_DIES
        fi
    }
}

inline launchEclipse() {
    atomic {
        if
        :: STEP("%d fork\n");
           hasRecorder[me] = true;
           mustRecord[me] = (stage[me] == MAIN)
        :: stage[me] == MAIN && !isCalm ->
           STEP("%d fork fails\n");
           excuseFor(me, FORK_FAILED);
           releaseLock(me)
        OR_DIES
        fi
    }
#ifndef WITHOUT_CLOSING
    atomic {
        if
        :: STEP("%d closeLockFile\n"); closeFile(me)
        OR_DIES
        fi
    }
#endif
    atomic {
        if
        :: STEP("%d becomePlatform\n"); isUp[me] = true
        OR_DIES
        fi
    }
}

inline doProvisioning() {
    atomic {
        if
        :: STEP("%d recordProvisioning\n");
#ifndef WITHOUT_MARKER
           if
           :: isAlive(marker) -> excuseFor(marker, WORKSPACE_REMOVED)  /* this launcher's, and made again */
           :: else
           fi;
           marker = me;
#endif
           stage[me] = PROVISIONING
        :: !isCalm ->
           STEP("%d recordProvisioning fails\n");
           excuseFor(me, PROVISIONING_UNRECORDED);
           stage[me] = PROVISIONING
        OR_DIES
        fi
    }
    atomic {
        if
        :: STEP("%d fork\n"); hasRecorder[me] = true
        OR_DIES
        fi
    }
    atomic {
        if
        :: STEP("%d populateLockFile\n");
           recorded[file[me]] = (hasRecorder[me] -> RECORDER(me) : STALE);
           hasOpened[me] = hasRecorder[me]      /* the gate */
        OR_DIES
        fi
    }
    atomic {
        if
        :: STEP("%d becomeProvisioning\n"); closeFile(me); isUp[me] = true
        OR_DIES
        fi
    }
}

#define isThrough(launcher) \
    ((stage[launcher] == GONE || (isUp[launcher] && stage[launcher] != PROVISIONING)) && \
     !hasRecorder[launcher])

/* Platforms ask for a restart: the one whose id is recorded. */
#define canRestart(process) \
    (process == STALE || (isLauncher(process) && stage[process] == MAIN && isUp[process]))

proctype Launcher(byte me) {
    byte waited;
end:
    atomic {
        if
        :: me == 1
        :: me > 1 && me < LATER && stage[me - 1] != UNBORN   /* they are alike: in this order */
        :: me == LATER && isCalm && isThrough(1) && isThrough(2) && isThrough(3)
        fi;
        stage[me] = LAUNCHING;
        if
        :: STEP("%d starts\n")
#ifndef NO_RESTART
        :: named != NO_FILE && canRestart(recorded[named]) ->
           STEP("%d starts as restart\n");
           old[me] = recorded[named]
#endif
        fi;
        createAndOpenLockFile()
    }
begin:
    if
    :: old[me] != NOBODY -> waitForOldPlatform()
    :: old[me] == NOBODY
    fi;
lock:
    lockLockFile();
    if
#ifndef NO_PROVISIONING
    :: stage[me] == MAIN -> doProvisioning()
#endif
    :: launchEclipse()
    fi;
    goto gone;
wait:
    atomic {
        if
        :: STEP("%d unlockLockFile\n"); releaseLock(me); stage[me] = LAUNCHING
        OR_DIES
        fi
    }
end_provisioning:                /* for as long as that takes */
    atomic {
        if
        :: !isAlive(marker) -> STEP("%d waitForProvisioning\n"); createAndOpenLockFile()
        OR_DIES
        fi
    }
    goto begin;
gone:
    skip
}

#define CHILD_STEP(text) printf(text, parent)
#define OR_CHILD_DIES \
    :: !isCalm -> \
        CHILD_STEP("%d child: is killed\n"); \
        if \
        :: mustRecord[parent] && stage[parent] != GONE -> excuseFor(parent, RECORDER_DIED) \
        :: else \
        fi; \
        endRecorder(parent); \
        goto gone

#ifdef WITHOUT_GATE
#define isGateOpen true
#else
#define isGateOpen (hasOpened[parent] || isUp[parent] || !isAlive(parent))
#endif

proctype Recorder(byte parent) {
end:
    atomic {
        hasRecorder[parent];
        if
        :: mustRecord[parent]
        :: else -> goto gate
        fi
    }
    atomic {
        if
        :: CHILD_STEP("%d child: populateLockFile\n");
           recorded[file[parent]] = (isAlive(parent) -> parent : STALE);
           mustRecord[parent] = false
        OR_CHILD_DIES
        fi
    }
gate:
    atomic {
        if
        :: isGateOpen -> CHILD_STEP("%d child: unlockLockFile\n"); releaseLock(parent)
        OR_CHILD_DIES
        fi
    }
    atomic {
        CHILD_STEP("%d child: endLaunch\n");
        endRecorder(parent)
    }
gone:
    skip
}

/* --- What others do --- */
inline endPlatform(launcher) {
    atomic {
        isUp[launcher] && stage[launcher] != DAEMON ->     /* nobody looks at a daemon */
        printf("%d ends\n", launcher);
        endLauncher(launcher)
    }
}

inline removeWorkspace() {
    printf("removeWorkspace\n");
    d_step {
        removals++;
        named = NO_FILE;
        marker = NOBODY;
        each = 1;
        do
        :: each <= LAUNCHERS ->
            if
            :: stage[each] == HOLDING || isUnexcusedMain(each) -> excuseFor(each, WORKSPACE_REMOVED)
            :: else
            fi;
            each++
        :: else -> break
        od;
        each = 0
    }
}

proctype World() {
    do
    :: endPlatform(1)
    :: endPlatform(2)
    :: endPlatform(3)
#ifndef NO_REMOVAL
    :: atomic { named != NO_FILE && removals == 0 -> removeWorkspace() }
#endif
    :: isCalm = true; break
    od
}

init {
    atomic {
        recorded[0] = STALE;    /* as good as nobody, and worse */
        run Launcher(1); run Launcher(2);
#ifdef TWO
        stage[3] = GONE;
#else
        run Launcher(3);
#endif
        run Launcher(LATER);
        run Recorder(1); run Recorder(2); run Recorder(3); run Recorder(LATER);
        run World()
    }
}
