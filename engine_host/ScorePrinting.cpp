#include "engine_host/ScorePrinting.h"

#include "engine_host/EnginePage.h"
#include "engine_host/PaperPrinting.h"
#include "engine_host/bridge/PageReports.h"

#include <QRectF>
#include <QSizeF>
#include <QThread>

#include <cmath>
#include <utility>

namespace {

/// Chromium rounds the paper and each margin to points. What is a little higher than what remains begins a further
/// page.
constexpr double rounding = 3 * 96.0 / 72.0;

/// What can be printed on, in CSS pixels: 96 to the inch.
QSizeF roomOn(const QPageLayout &layout)
{
    const QSizeF inches = layout.paintRect(QPageLayout::Inch).size();
    return { std::floor(inches.width() * 96 - rounding), std::floor(inches.height() * 96 - rounding) };
}

} // namespace

ScorePrinting::ScorePrinting(EnginePage &page, PageReports &reports)
    : m_page(page)
    , m_reports(reports)
{
    connect(&m_reports, &PageReports::printPrepared, this, &ScorePrinting::prepared);
    connect(&m_page, &QWebEnginePage::renderProcessTerminated, this, [this] {
        // A document that is there already needs no page.
        if (!m_drawing)
            end({});
    });
}

ScorePrinting::~ScorePrinting()
{
    // Whoever ends the program behind an order to print still wants the paper.
    if (m_drawing)
        m_drawing->wait();
}

void ScorePrinting::print(const PrintTarget &target, Printed printed)
{
    if (m_job) {
        printed({});
        return;
    }
    m_job = Job{ target, std::move(printed) };
    const QSizeF room = roomOn(target.layout);
    m_reports.wantPrint(room.width(), room.height());
}

void ScorePrinting::prepared(bool succeeded)
{
    if (!m_job || m_job->prepared)
        return;
    if (!succeeded) {
        end({});
        return;
    }
    m_job->prepared = true;
    m_page.printToPdf([this](const QByteArray &pdf) { arrived(pdf); }, m_job->target.layout);
}

void ScorePrinting::arrived(const QByteArray &pdf)
{
    if (!m_job || m_drawing)
        return;
    const std::shared_ptr<QPrinter> printer = m_job->target.printer;
    if (pdf.isEmpty() || !printer) {
        end({ !pdf.isEmpty(), pdf });
        return;
    }
    // Not by QWebEngineView::print(): which margins it gives the pages, and onto which part of the paper it then paints
    // them, changes from one version of Qt to the next.
    m_reports.endPrint();
    const auto succeeded = std::make_shared<bool>(false);
    m_drawing.reset(QThread::create([pdf, printer, succeeded] { *succeeded = PaperPrinting::print(pdf, *printer); }));
    connect(m_drawing.get(), &QThread::finished, this, [this, succeeded] {
        m_drawing->wait();
        m_drawing.release()->deleteLater();
        end({ *succeeded, {} });
    });
    m_drawing->start();
}

void ScorePrinting::end(const PrintResult &result)
{
    if (!m_job)
        return;
    m_reports.endPrint();
    const Printed printed = std::exchange(m_job, std::nullopt)->printed;
    printed(result);
}
