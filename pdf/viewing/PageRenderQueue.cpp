#include "pdf/viewing/PageRenderQueue.h"

#include "pdf/conversion/PDFDocument.h"
#include "pdf/viewing/PagePicture.h"

#include <algorithm>
#include <utility>

namespace {

/// A page that is drawn for longer than this is given up when it is no longer wanted: a new process for the next page
/// costs less than the wait.
constexpr std::chrono::milliseconds worthRestarting(1500);

bool samePicture(const PageRenderQueue::Request &a, const PageRenderQueue::Request &b)
{
    return a.index == b.index && a.key == b.key && a.size == b.size;
}

} // namespace

PageRenderQueue::PageRenderQueue() = default;

PageRenderQueue::~PageRenderQueue()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
        if (m_job)
            m_job->stop.request_stop();
    }
    m_changed.notify_one();
    if (m_worker.joinable())
        m_worker.join();
}

void PageRenderQueue::want(
    QObject &client, std::shared_ptr<const PDFDocument> document, Requests requests, Receiver arrived)
{
    {
        const std::lock_guard lock(m_mutex);
        if (std::erase_if(m_clients, [&client](const Client &other) { return other.object == &client; }) == 0)
            connect(&client, &QObject::destroyed, this, &PageRenderQueue::forget);
        if (m_job && m_job->client == &client && m_job->document == document) {
            const auto isDrawn = [this](const Request &other) {
                return samePicture(other, m_job->request) && !m_job->stop.stop_requested();
            };
            if (std::erase_if(requests, isDrawn) == 0
                && std::chrono::steady_clock::now() - m_job->begun > worthRestarting)
                m_job->stop.request_stop();
        }
        m_clients.push_back({ &client, std::move(document), std::move(requests), std::move(arrived) });
        giveUpUnseen();
    }
    // A program that never shows a PDF needs no thread for it.
    if (!m_worker.joinable())
        m_worker = std::thread([this] { work(); });
    m_changed.notify_one();
}

void PageRenderQueue::forget(const QObject *client)
{
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_clients, [client](const Client &other) { return other.object == client; });
    giveUpUnseen();
}

/// A page of a document that nobody looks at any more must not keep the next document waiting.
void PageRenderQueue::giveUpUnseen()
{
    const auto looksAt = [this](const Client &client) { return client.document == m_job->document; };
    if (m_job && std::none_of(m_clients.begin(), m_clients.end(), looksAt))
        m_job->stop.request_stop();
}

std::optional<PageRenderQueue::Job> PageRenderQueue::next()
{
    Client *chosen = nullptr;
    for (Client &client : m_clients) {
        // Each list is in order already, so its first one stands for it.
        if (!client.requests.empty() && (!chosen || client.requests.front().urgency < chosen->requests.front().urgency))
            chosen = &client;
    }
    if (!chosen)
        return std::nullopt;
    Job job{ chosen->object, chosen->document, std::move(chosen->requests.front()), {} };
    chosen->requests.erase(chosen->requests.begin());
    return job;
}

/// The worker's life. It begins a page only when the last one is in its client's hands: a main thread that is busy
/// finds one picture waiting for it, not a heap.
void PageRenderQueue::work()
{
    std::unique_lock lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return m_ending || (!m_job && (m_job = next())); });
        if (m_ending)
            return;
        const Request request = m_job->request;
        std::shared_ptr<const PDFDocument> document = m_job->document;
        const std::stop_token stop = m_job->stop.get_token();
        lock.unlock();
        PagePicture picture(document->picture(request.index, request.size, stop), request.shown);
        document.reset();
        QMetaObject::invokeMethod(
            this, [this, picture = std::move(picture)] { deliver(picture); }, Qt::QueuedConnection);
        lock.lock();
        m_changed.wait(lock, [this] { return m_ending || !m_job; });
    }
}

void PageRenderQueue::deliver(const PagePicture &picture)
{
    std::optional<Job> job;
    Receiver arrived;
    {
        const std::lock_guard lock(m_mutex);
        job = std::exchange(m_job, std::nullopt);
        for (const Client &other : m_clients) {
            if (other.object == job->client && other.document == job->document && !job->stop.stop_requested())
                arrived = other.arrived;
        }
    }
    m_changed.notify_one();
    ++m_drawn;
    if (arrived)
        arrived(job->request, picture);
}
