// What the thread sanitizer cannot see of Qt, which is built without it, and of the system.
//
// It is loaded before the libraries of each process that a test starts, also of those that are not sanitized. Work that
// is handed to another thread comes after all that was done before: Qt's locks, which see to that, are atomics in code
// that is not instrumented. Qt starts a process with clone(): in the child, which shares the memory, the sanitizer
// stops watching, and so does in the thread of the parent. Of shared memory it does not see that it goes, and that
// other memory comes in its place.
#include <QtCore/QObject>
#include <QtCore/QThreadPool>

#include <cstdarg>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include <dlfcn.h>
#include <sched.h>
#include <sys/shm.h>

extern "C" {
[[gnu::weak]] void AnnotateHappensAfter(const char* file, int line, const volatile void* place);
[[gnu::weak]] void AnnotateHappensBefore(const char* file, int line, const volatile void* place);
[[gnu::weak]] void AnnotateIgnoreWritesBegin(const char* file, int line);
[[gnu::weak]] void AnnotateIgnoreWritesEnd(const char* file, int line);
}

namespace {

/// All that this thread has done comes before what is done by whoever comes to @p place.
void leave(const void* place)
{
    if (AnnotateHappensBefore)
        AnnotateHappensBefore(__FILE__, __LINE__, place);
}

void comeTo(const void* place)
{
    if (AnnotateHappensAfter)
        AnnotateHappensAfter(__FILE__, __LINE__, place);
}

/// While it lives, what this thread does is not looked at: Qt's own, under Qt's locks.
class Unseen
{
public:
    Unseen()
    {
        if (AnnotateIgnoreWritesBegin)
            AnnotateIgnoreWritesBegin(__FILE__, __LINE__);
    }
    Unseen(const Unseen&) = delete;
    Unseen& operator=(const Unseen&) = delete;
    ~Unseen()
    {
        if (AnnotateIgnoreWritesEnd)
            AnnotateIgnoreWritesEnd(__FILE__, __LINE__);
    }
};

/// The function @p name that comes behind the one here.
template<typename Function>
Function* next(const char* name)
{
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

} // namespace

#if QT_VERSION < QT_VERSION_CHECK(6, 7, 0) // later ones queue calls in another way
namespace {

/// A call that another thread makes, or forgets.
class HandedCall : public QtPrivate::QSlotObjectBase
{
public:
    explicit HandedCall(QSlotObjectBase* call)
        : QSlotObjectBase(&act)
        , m_call(call)
    {
        leave(this);
    }

private:
    static void act(int what, QSlotObjectBase* object, QObject* receiver, void** arguments, bool* /*isSame*/)
    {
        auto* const self = static_cast<HandedCall*>(object);
        comeTo(self);
        if (what == Call) {
            self->m_call->call(receiver, arguments);
        } else if (what == Destroy) {
            self->m_call->destroyIfLastRef();
            delete self;
        }
    }

    QSlotObjectBase* const m_call;
};

} // namespace

bool QMetaObject::invokeMethodImpl(QObject* object, QtPrivate::QSlotObjectBase* call, Qt::ConnectionType type,
                                   void* result)
{
    static auto* const real = next<bool(QObject*, QtPrivate::QSlotObjectBase*, Qt::ConnectionType, void*)>(
        "_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionTypeEPv");
    if (type != Qt::QueuedConnection)
        return real(object, call, type, result);
    auto* const handed = new HandedCall(call);
    const Unseen unseen;
    return real(object, handed, type, result);
}
#endif

void QThreadPool::start(std::function<void()> work, int priority)
{
    static auto* const real =
        next<void(QThreadPool*, std::function<void()>, int)>("_ZN11QThreadPool5startESt8functionIFvvEEi");
    const auto place = std::make_shared<char>();
    std::function<void()> handed = [pool = this, place, work = std::move(work)]() mutable {
        comeTo(place.get());
        std::exchange(work, nullptr)();
        leave(pool);
    };
    leave(place.get());
    const Unseen unseen;
    real(this, std::move(handed), priority);
}

bool QThreadPool::waitForDone(int milliseconds)
{
    static auto* const real = next<bool(QThreadPool*, int)>("_ZN11QThreadPool11waitForDoneEi");
    const bool isDone = real(this, milliseconds);
    if (isDone)
        comeTo(this);
    return isDone;
}

void* shmat(int id, const void* wanted, int flags) noexcept
{
    static auto* const real = next<void*(int, const void*, int)>("shmat");
    void* const place = real(id, wanted, flags);
    if (reinterpret_cast<intptr_t>(place) != -1)
        comeTo(place);
    return place;
}

int shmdt(const void* place) noexcept
{
    static auto* const real = next<int(const void*)>("shmdt");
    leave(place);
    return real(place);
}

/// Not the sanitizer's, which is the next one.
extern "C" int clone(int (*body)(void*), void* stack, int flags, void* argument, ...)
{
    static auto* const real =
        reinterpret_cast<decltype(&clone)>(::dlsym(::dlopen("libc.so.6", RTLD_LAZY | RTLD_NOLOAD), "clone"));
    va_list rest;
    va_start(rest, argument);
    void* const parentId = va_arg(rest, void*);
    void* const storage = va_arg(rest, void*);
    void* const childId = va_arg(rest, void*);
    va_end(rest);
    return real(body, stack, flags, argument, parentId, storage, childId);
}
