// Has a race, which ThreadSanitizer has to find: what is written behind a hand-over is not ordered by it.

#include <QCoreApplication>

#include <atomic>
#include <thread>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QObject receiver;
    int number = 0;
    // Which orders nothing.
    std::atomic<bool> isPosted = false;
    std::thread worker([&] {
        QMetaObject::invokeMethod(&receiver, [&number] { ++number; }, Qt::QueuedConnection);
        ++number;
        isPosted.store(true, std::memory_order_relaxed);
    });
    while (!isPosted.load(std::memory_order_relaxed))
        std::this_thread::yield();
    QCoreApplication::processEvents();
    worker.join();
    return number == 2 ? 0 : 1;
}
