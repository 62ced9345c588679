#include "pdf/conversion/PDFOpening.h"

#include "pdf/conversion/PDFDocument.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

using namespace std::chrono_literals;

namespace {

/// How long a stopped opening may take to clear away its process. A file that does not answer keeps nobody longer.
constexpr auto stopTimeout = 500ms;

PDFOpening::Result open(const QString &path, qint64 largestFile, const std::stop_token &stop)
{
    const QFileInfo file(path);
    if (file.isFile() && file.size() > largestFile)
        return { nullptr, true };
    return { PDFDocument::open(path, stop), false };
}

} // namespace

struct PDFOpening::Shared {
    std::mutex mutex;
    std::condition_variable ended;
    bool isDone = false;
    /// Null when nobody waits any more.
    PDFOpening *opening = nullptr;
    Arrived arrived;

    void deliver(Result result)
    {
        const std::lock_guard lock(mutex);
        isDone = true;
        ended.notify_all();
        if (!opening)
            return;
        // What is posted to an object goes with it.
        QMetaObject::invokeMethod(
            opening,
            [receiver = arrived, result = std::move(result)] {
                // Which may well begin the next opening, and end this one.
                const Arrived copy = receiver;
                copy(result);
            },
            Qt::QueuedConnection);
    }
};

PDFOpening::PDFOpening(const QString &path, qint64 largestFile, Arrived arrived)
    : m_shared(std::make_shared<Shared>())
{
    m_shared->opening = this;
    m_shared->arrived = std::move(arrived);
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, &PDFOpening::stop);
    std::thread([shared = m_shared, path, largestFile, stop = m_stop.get_token()] {
        shared->deliver(open(path, largestFile, stop));
    }).detach();
}

PDFOpening::~PDFOpening() { stop(); }

void PDFOpening::stop()
{
    m_stop.request_stop();
    std::unique_lock lock(m_shared->mutex);
    m_shared->opening = nullptr;
    m_shared->ended.wait_for(lock, stopTimeout, [this] { return m_shared->isDone; });
}
