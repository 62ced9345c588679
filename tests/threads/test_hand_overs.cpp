#include <QCoreApplication>
#include <QTest>
#include <QThread>
#include <QThreadPool>

#include <atomic>
#include <memory>
#include <thread>

/// What one thread writes and another one reads behind a hand-over of Qt's is no race. ThreadSanitizer ends the program
/// where it thinks so.
class TestHandOvers final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatIsPostedComesAfterThePosting()
    {
        int number = 0;
        bool isThere = false;
        std::thread worker([&] {
            number = 7;
            QMetaObject::invokeMethod(
                this,
                [&] {
                    isThere = number == 7;
                    number = 8;
                },
                Qt::QueuedConnection);
        });
        QTRY_VERIFY(isThere);
        worker.join();
        QCOMPARE(number, 8);
    }

    void whatIsPostedToNobodyIsLetGoOf()
    {
        auto receiver = std::make_unique<QObject>();
        QObject *const address = receiver.get();
        const auto number = std::make_shared<int>(0);
        // Another thread would be ordered by its end.
        std::atomic<bool> isPosted = false;
        std::thread worker([&] {
            QMetaObject::invokeMethod(
                address, [number, own = std::make_unique<int>(7)] { *number = *own; }, Qt::QueuedConnection);
            isPosted.store(true, std::memory_order_relaxed);
        });
        while (!isPosted.load(std::memory_order_relaxed))
            std::this_thread::yield();
        receiver.reset();
        worker.join();
        QCOMPARE(number.use_count(), 1);
        QCOMPARE(*number, 0);
    }

    void aPoolBeginsAfterTheOrder()
    {
        QThreadPool pool;
        std::atomic<int> right = 0;
        for (int i = 0; i < 20; ++i) {
            const auto number = std::make_shared<int>(i);
            pool.start([number, i, &right] {
                if (*number == i)
                    ++right;
            });
        }
        QVERIFY(pool.waitForDone(-1));
        QCOMPARE(right.load(), 20);
    }

    void aThreadHasEndedWhenItWasWaitedFor()
    {
        int number = 0;
        const std::unique_ptr<QThread> thread(QThread::create([&number] { number = 7; }));
        thread->start();
        // By then its end needs no waiting, which would be seen.
        QTRY_VERIFY(thread->isFinished());
        QVERIFY(thread->wait());
        QCOMPARE(number, 7);
    }
};

QTEST_GUILESS_MAIN(TestHandOvers)
#include "test_hand_overs.moc"
