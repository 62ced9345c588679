#pragma once

#include <QList>
#include <QObject>
#include <QSize>
#include <QString>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>
#include <vector>

class PagePicture;
class PDFDocument;

/// Draws pages in the background, one after the other, the most urgent first.
///
/// One queue for all views: a document's process draws one page at a time, so two queues would only get in each other's
/// way. A view says what it wants now; whatever it wanted before and has not been begun is dropped. Every
/// public function is for the main thread, which never waits for a page.
class PageRenderQueue final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PageRenderQueue)

public:
    /// How soon a page is wanted.
    enum class Urgency {
        OnScreen,
        /// The small pictures beside the pages.
        Thumbnail,
        /// What would come on screen next.
        Nearby,
    };

    struct Request {
        int index = 0;
        /// Tells this picture of the page from its others; comes back with it.
        QString key;
        /// Pixels.
        QSize size;
        /// Width on the screen, in its pixels.
        int shown = 0;
        Urgency urgency = Urgency::OnScreen;
    };
    using Requests = std::vector<Request>;
    /// Takes the picture, null when the page cannot be drawn. Called on the main thread.
    using Receiver = std::function<void(const Request &, const PagePicture &)>;

    PageRenderQueue();
    /// Gives up the page that is being drawn, and forgets the others.
    ~PageRenderQueue() override;

    /// Replaces what `client` wants of its document, the sooner the earlier in the list. What is being drawn for it
    /// already arrives without being begun again, and is given up where it takes long and is no longer wanted.
    /// `arrived` is called as long as the client lives.
    void want(QObject &client, std::shared_ptr<const PDFDocument> document, Requests requests, Receiver arrived);

    /// How many pages have been drawn since the start.
    int drawnCount() const { return m_drawn; }

private:
    /// One view, and what it waits for.
    struct Client {
        const QObject *object;
        std::shared_ptr<const PDFDocument> document;
        Requests requests;
        Receiver arrived;
    };
    /// The page at the worker, until its client has it.
    struct Job {
        const QObject *client;
        std::shared_ptr<const PDFDocument> document;
        Request request;
        std::stop_source stop;
        std::chrono::steady_clock::time_point begun = std::chrono::steady_clock::now();
    };

    void forget(const QObject *client);
    void work();
    std::optional<Job> next();
    void giveUpUnseen();
    void deliver(const PagePicture &picture);

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<Client> m_clients;
    std::optional<Job> m_job;
    bool m_ending = false;
    int m_drawn = 0;
    std::thread m_worker;
};
