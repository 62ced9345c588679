#include "pdf/viewing/PageRenderQueue.h"

#include "pdf/conversion/PDFDocument.h"

#include <algorithm>
#include <utility>

namespace {

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
        if (m_job && m_job->client == &client && m_job->document == document)
            std::erase_if(requests, [this](const Request &other) { return samePicture(other, m_job->request); });
        m_clients.push_back({ &client, std::move(document), std::move(requests), std::move(arrived) });
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
    Job job{ chosen->object, chosen->document, std::move(chosen->requests.front()) };
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
        lock.unlock();
        QImage image = document->picture(request.index, request.size);
        document.reset();
        QMetaObject::invokeMethod(
            this, [this, image = std::move(image)] { deliver(image); }, Qt::QueuedConnection);
        lock.lock();
        m_changed.wait(lock, [this] { return m_ending || !m_job; });
    }
}

void PageRenderQueue::deliver(const QImage &image)
{
    std::optional<Job> job;
    Receiver arrived;
    {
        const std::lock_guard lock(m_mutex);
        job = std::exchange(m_job, std::nullopt);
        for (const Client &other : m_clients) {
            if (other.object == job->client && other.document == job->document)
                arrived = other.arrived;
        }
    }
    m_changed.notify_one();
    ++m_drawn;
    if (arrived)
        arrived(job->request, image);
}
