// Tells ThreadSanitizer of what Qt orders.
//
// Qt comes without its instrumentation, and locks without the functions that it watches: it takes what one thread posts
// and another one is given for a race. The linker has the calls of our code come here first (--wrap, see CMakeLists.txt
// beside this), which say that what is done behind a hand-over is done after what came before it.

#include <QDeadlineTimer>
#include <QMetaObject>
#include <QRunnable>
#include <QThread>
#include <QThreadPool>

#include <functional>
#include <future>
#include <memory>
#include <sanitizer/tsan_interface.h>
#include <utility>

namespace {

/// Stands in for what is posted.
class Posted final : public QtPrivate::QSlotObjectBase {
    Q_DISABLE_COPY_MOVE(Posted)

public:
    explicit Posted(QSlotObjectBase *slot)
        : QSlotObjectBase(&Posted::answer)
        , m_slot(slot)
    {
        __tsan_release(this);
    }

private:
    ~Posted() { m_slot->destroyIfLastRef(); }

    static void answer(int what, QSlotObjectBase *base, QObject *receiver, void **arguments, bool *)
    {
        auto *posted = static_cast<Posted *>(base);
        __tsan_acquire(posted);
        if (what == Call) {
            posted->m_slot->call(receiver, arguments);
            // Whoever posted it may be the last to let go of it.
            __tsan_release(posted);
        } else if (what == Destroy) {
            delete posted;
        }
    }

    QSlotObjectBase *const m_slot;
};

/// Stands in for what a pool is to run.
class Pooled final : public QRunnable {
    Q_DISABLE_COPY_MOVE(Pooled)

public:
    explicit Pooled(QRunnable *work)
        : m_work(work)
    {
        __tsan_release(this);
    }

    void run() override
    {
        __tsan_acquire(this);
        const std::unique_ptr<QRunnable> own(m_work->autoDelete() ? m_work : nullptr);
        m_work->run();
    }

private:
    QRunnable *const m_work;
};

} // namespace

// What the linker calls Qt's function, and what it calls in its place.
#define REAL(name) asm("__real_" name)
#define WRAP(name) asm("__wrap_" name)

#if QT_VERSION >= QT_VERSION_CHECK(6, 7, 0)

#define INVOKE_METHOD                                                                                                  \
    "_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionTypeExPKPKvPKPKcPKPKNS" \
    "2"                                                                                                                \
    "_18QMetaTypeInterfaceE"

using Types = const QtPrivate::QMetaTypeInterface *const *;

bool invokeMethod(QObject *object, QtPrivate::QSlotObjectBase *slot, Qt::ConnectionType type, qsizetype count,
    const void *const *parameters, const char *const *names, Types types) REAL(INVOKE_METHOD);
bool invokeMethodSeen(QObject *object, QtPrivate::QSlotObjectBase *slot, Qt::ConnectionType type, qsizetype count,
    const void *const *parameters, const char *const *names, Types types) WRAP(INVOKE_METHOD);

bool invokeMethodSeen(QObject *object, QtPrivate::QSlotObjectBase *slot, Qt::ConnectionType type, qsizetype count,
    const void *const *parameters, const char *const *names, Types types)
{
    return invokeMethod(object, new Posted(slot), type, count, parameters, names, types);
}

#else

#define INVOKE_METHOD                                                                                                  \
    "_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionTypeEPv"

bool invokeMethod(QObject *object, QtPrivate::QSlotObjectBase *slot, Qt::ConnectionType type, void *result)
    REAL(INVOKE_METHOD);
bool invokeMethodSeen(QObject *object, QtPrivate::QSlotObjectBase *slot, Qt::ConnectionType type, void *result)
    WRAP(INVOKE_METHOD);

bool invokeMethodSeen(QObject *object, QtPrivate::QSlotObjectBase *slot, Qt::ConnectionType type, void *result)
{
    return invokeMethod(object, new Posted(slot), type, result);
}

#endif

void startRunnable(QThreadPool *pool, QRunnable *work, int priority) REAL("_ZN11QThreadPool5startEP9QRunnablei");
void startRunnableSeen(QThreadPool *pool, QRunnable *work, int priority) WRAP("_ZN11QThreadPool5startEP9QRunnablei");

void startRunnableSeen(QThreadPool *pool, QRunnable *work, int priority)
{
    startRunnable(pool, new Pooled(work), priority);
}

// Qt 6.4 makes a runnable of it in its own library.
void startFunctionSeen(QThreadPool *pool, std::function<void()> work, int priority)
    WRAP("_ZN11QThreadPool5startESt8functionIFvvEEi");

void startFunctionSeen(QThreadPool *pool, std::function<void()> work, int priority)
{
    startRunnableSeen(pool, QRunnable::create(std::move(work)), priority);
}

QThread *createThread(std::future<void> &&work) REAL("_ZN7QThread16createThreadImplEOSt6futureIvE");
QThread *createThreadSeen(std::future<void> &&work) WRAP("_ZN7QThread16createThreadImplEOSt6futureIvE");

QThread *createThreadSeen(std::future<void> &&work)
{
    return createThread(std::async(std::launch::deferred, [work = std::move(work)]() mutable {
        work.get();
        __tsan_release(QThread::currentThread());
    }));
}

bool waitForThread(QThread *thread, QDeadlineTimer deadline) REAL("_ZN7QThread4waitE14QDeadlineTimer");
bool waitForThreadSeen(QThread *thread, QDeadlineTimer deadline) WRAP("_ZN7QThread4waitE14QDeadlineTimer");

bool waitForThreadSeen(QThread *thread, QDeadlineTimer deadline)
{
    const bool ended = waitForThread(thread, deadline);
    if (ended)
        __tsan_acquire(thread);
    return ended;
}
