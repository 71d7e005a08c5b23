// Shows the thread sanitizer what Qt, which is not built with it, keeps from it: Qt's locks, and that what a
// thread did before it emitted a signal or posted an event lies before the event's delivery. Part of the test
// executables in thread-sanitizer builds only: the definitions here come before Qt's own in symbol lookup.
#include <QEvent>
#include <QMutex>
#include <QOpenGLWidget>
#include <QReadWriteLock>

#include <sanitizer/tsan_interface.h>

#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

namespace {

// Qt's own function behind the one that is defined here.
template <class Function> Function *original(const char *pSymbol)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, pSymbol));
}

// Where the code of the library and of the tests lies.
struct OwnCode
{
    struct Range
    {
        uintptr_t nBegin;
        uintptr_t nEnd;
    };
    std::vector<Range> vecRanges;

    OwnCode()
    {
        dl_iterate_phdr(
            [](dl_phdr_info *pInfo, size_t, void *pUser) {
                const bool blExecutable = pInfo->dlpi_name[0] == '\0';
                if (blExecutable || std::strstr(pInfo->dlpi_name, "libXeltRender") != nullptr) {
                    static_cast<OwnCode *>(pUser)->add(*pInfo);
                }
                return 0;
            },
            this);
    }

    void add(const dl_phdr_info &info)
    {
        for (int i = 0; i < info.dlpi_phnum; ++i) {
            const auto &segment = info.dlpi_phdr[i];
            if (segment.p_type == PT_LOAD) {
                const uintptr_t nBegin = info.dlpi_addr + segment.p_vaddr;
                vecRanges.push_back({nBegin, nBegin + segment.p_memsz});
            }
        }
    }

    bool contains(const void *pAddress) const
    {
        const auto nAddress = reinterpret_cast<uintptr_t>(pAddress);
        return std::any_of(vecRanges.begin(), vecRanges.end(), [=](const Range &range) {
            return nAddress >= range.nBegin && nAddress < range.nEnd;
        });
    }
};

// Qt takes its own locks by ways that are not all seen here, so they are left out altogether.
bool isOurs(const void *pCaller)
{
    static const auto *const pOwnCode = new OwnCode;
    return pOwnCode->contains(pCaller);
}

template <class Call> void lockAnnotated(const void *pCaller, void *pLock, unsigned nFlags, Call call)
{
    if (!isOurs(pCaller)) {
        call();
        return;
    }
    __tsan_mutex_pre_lock(pLock, nFlags);
    call();
    __tsan_mutex_post_lock(pLock, nFlags, 0);
}

template <class Call> bool tryLockAnnotated(const void *pCaller, void *pLock, unsigned nFlags, Call call)
{
    if (!isOurs(pCaller)) {
        return call();
    }
    nFlags |= __tsan_mutex_try_lock;
    __tsan_mutex_pre_lock(pLock, nFlags);
    const bool blLocked = call();
    __tsan_mutex_post_lock(pLock, blLocked ? nFlags : nFlags | __tsan_mutex_try_lock_failed, 0);
    return blLocked;
}

template <class Call> void unlockAnnotated(const void *pCaller, void *pLock, unsigned nFlags, Call call)
{
    if (!isOurs(pCaller)) {
        call();
        return;
    }
    __tsan_mutex_pre_unlock(pLock, nFlags);
    call();
    __tsan_mutex_post_unlock(pLock, nFlags);
}

// QReadWriteLock::unlock does not say which way the lock was held. Never destroyed: static destructors may
// still lock.
std::vector<void *> &locksHeldForRead()
{
    thread_local auto *pHeld = new std::vector<void *>;
    return *pHeld;
}

bool readAnnotated(const void *pCaller, void *pLock, int nTimeout)
{
    static auto *const pfn = original<bool(void *, int)>("_ZN14QReadWriteLock14tryLockForReadEi");
    if (!tryLockAnnotated(pCaller, pLock, __tsan_mutex_read_lock, [=] { return pfn(pLock, nTimeout); })) {
        return false;
    }
    locksHeldForRead().push_back(pLock);
    return true;
}

} // namespace

// The instruction after the call; the sanitizer's code keeps calls in tail position from being jumps.
#define CALLER __builtin_return_address(0)

void QMutex::lock() noexcept
{
    static auto *const pfn = original<void(void *)>("_ZN6QMutex4lockEv");
    lockAnnotated(CALLER, this, 0, [this] { pfn(this); });
}

bool QMutex::tryLock(int timeout) noexcept
{
    static auto *const pfn = original<bool(void *, int)>("_ZN6QMutex7tryLockEi");
    return tryLockAnnotated(CALLER, this, 0, [=] { return pfn(this, timeout); });
}

void QMutex::unlock() noexcept
{
    static auto *const pfn = original<void(void *)>("_ZN6QMutex6unlockEv");
    unlockAnnotated(CALLER, this, 0, [this] { pfn(this); });
}

QMutex::~QMutex()
{
    static auto *const pfn = original<void(void *)>("_ZN6QMutexD1Ev");
    if (isOurs(CALLER)) {
        __tsan_mutex_destroy(this, 0);
    }
    pfn(this);
}

void QReadWriteLock::lockForRead()
{
    readAnnotated(CALLER, this, -1);
}

bool QReadWriteLock::tryLockForRead()
{
    return readAnnotated(CALLER, this, 0);
}

bool QReadWriteLock::tryLockForRead(int timeout)
{
    return readAnnotated(CALLER, this, timeout);
}

void QReadWriteLock::lockForWrite()
{
    static auto *const pfn = original<void(void *)>("_ZN14QReadWriteLock12lockForWriteEv");
    lockAnnotated(CALLER, this, 0, [this] { pfn(this); });
}

bool QReadWriteLock::tryLockForWrite(int timeout)
{
    static auto *const pfn = original<bool(void *, int)>("_ZN14QReadWriteLock15tryLockForWriteEi");
    return tryLockAnnotated(CALLER, this, 0, [=] { return pfn(this, timeout); });
}

void QReadWriteLock::unlock()
{
    static auto *const pfn = original<void(void *)>("_ZN14QReadWriteLock6unlockEv");
    std::vector<void *> &vecHeld = locksHeldForRead();
    const auto it = std::find(vecHeld.rbegin(), vecHeld.rend(), this);
    unsigned nFlags = 0;
    if (it != vecHeld.rend()) {
        nFlags = __tsan_mutex_read_lock;
        vecHeld.erase(std::next(it).base());
    }
    unlockAnnotated(CALLER, this, nFlags, [this] { pfn(this); });
}

// The ways in which a thread hands work to a widget's own thread.
void QMetaObject::activate(QObject *sender, const QMetaObject *meta, int signal, void **argv)
{
    static auto *const pfn = original<void(QObject *, const QMetaObject *, int, void **)>(
        "_ZN11QMetaObject8activateEP7QObjectPKS_iPPv");
    __tsan_release(sender);
    pfn(sender, meta, signal, argv);
}

bool QMetaObject::invokeMethodImpl(QObject *object, QtPrivate::QSlotObjectBase *slot, Qt::ConnectionType type,
                                   void *ret)
{
    static auto *const pfn =
        original<bool(QObject *, QtPrivate::QSlotObjectBase *, Qt::ConnectionType, void *)>(
            "_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionTypeE"
            "Pv");
    // Kept for ever: the calling and the receiving thread share the object by a count that Qt keeps, and the
    // later one deletes it, which would look like a race with what the earlier one did.
    slot->ref();
    __tsan_release(object);
    return pfn(object, slot, type, ret);
}

void QObject::deleteLater()
{
    static auto *const pfn = original<void(QObject *)>("_ZN7QObject11deleteLaterEv");
    __tsan_release(this);
    pfn(this);
}

// ... and where it arrives, for the widgets of the library.
bool QOpenGLWidget::event(QEvent *e)
{
    static auto *const pfn = original<bool(QOpenGLWidget *, QEvent *)>("_ZN13QOpenGLWidget5eventEP6QEvent");
    if (e->type() == QEvent::MetaCall || e->type() == QEvent::DeferredDelete) {
        __tsan_acquire(static_cast<QObject *>(this));
    }
    return pfn(this, e);
}
